#include "nequar_algebra/frame/class.h"

#include <cstdio>
#include <cstdlib>
#include <new>
#include <string>

#include "frame/message_store.h"
#include "nequar_algebra/frame/message.h"

struct CNqClass::Record {
    std::string message;  // the last record
    std::string trace;    // all records of the last failing call, innermost first, one per line
};

CNqClass::CNqClass() noexcept = default;

CNqClass::CNqClass(const CNqClass& other)
    : class_name_(other.class_name_),
      error_detail_(other.error_detail_),
      trace_mode_(other.trace_mode_) {}

CNqClass::CNqClass(CNqClass&& other) noexcept
    : class_name_(other.class_name_),
      error_detail_(other.error_detail_),
      trace_mode_(other.trace_mode_) {}

CNqClass::~CNqClass() {
    delete record_;
}

CNqClass& CNqClass::operator=(const CNqClass& other) {
    class_name_ = other.class_name_;
    error_detail_ = other.error_detail_;
    trace_mode_ = other.trace_mode_;
    return *this;
}

// The source stays a valid object of its class, so it keeps its name.
CNqClass& CNqClass::operator=(CNqClass&& other) noexcept {
    return *this = static_cast<const CNqClass&>(other);
}

void CNqClass::cp_Copy(const CNqClass* other) {
    if (other != this) CNqClass::operator=(*other);
}

void CNqClass::zet_x(CNqClass* a) const {
    a->zet_s(trace_mode_);
}

void CNqClass::zet_x(CNqClass* a, CNqClass* b, CNqClass* c) const {
    zet_x(a);
    zet_x(b);
    zet_x(c);
}

void CNqClass::zet_x(CNqClass* a, CNqClass* b, CNqClass* c, CNqClass* d, CNqClass* e) const {
    zet_x(a, b, c);
    zet_x(d);
    zet_x(e);
}

CNqString CNqClass::grm_Get_Recorded_Message() const {
    return record_ != nullptr ? CNqString(record_->message.c_str()) : CNqString();
}

CNqString CNqClass::gft_Get_Failure_Trace() const {
    return record_ != nullptr ? CNqString(record_->trace.c_str()) : CNqString();
}

void CNqClass::cr_Clear_Record() {
    delete record_;
    record_ = nullptr;
}

void CNqClass::zet_pme(const CNqString& method) const {
    record(method);
}

void CNqClass::zsm(const CNqString& method) const {
    record(method);
}

void CNqClass::zsm_Save_Message(const CNqString& method) const {
    record(method);
}

void CNqClass::report(const char* detail, const char* method) const {
    set_error_detail(detail);
    zet_pme(CNqString::literal(method));
}

bool CNqClass::fail(const char* detail, const char* method) const {
    set_error_detail(detail);
    zsm(CNqString::literal(method));
    return false;
}

// The chain stays open, so that the record which follows continues it even when no scope is open.
void CNqClass::adopt_failure_of(const CNqClass& inner) const {
    if (&inner == this || inner.record_ == nullptr) return;
    begin_chain_if_new();
    if (record_ == nullptr) return;
    try {
        if (!record_->trace.empty()) record_->trace += '\n';
        record_->trace += inner.record_->trace;
    } catch (const std::bad_alloc&) {
        // The trace stays as far as it fits; the detail still tells what failed.
    }
}

void CNqClass::end_process(const char* detail, const char* method) const {
    set_error_detail(detail);
    zsm_Save_Message(CNqString::literal(method));
    Nq_Print_Message();
    std::exit(EXIT_SUCCESS);
}

void CNqClass::begin_chain_if_new() const {
    if (record_ == nullptr) record_ = new (std::nothrow) Record;
    if (record_ != nullptr && !chain_is_open_) record_->trace.clear();
    chain_is_open_ = true;
}

void CNqClass::record(const CNqString& method) const {
    begin_chain_if_new();
    if (call_depth_ == 0) chain_is_open_ = false;
    if (trace_mode_)
        std::fprintf(stderr, "%s::%s: %s\n", class_name_.c_str(), method.c_str(),
                     error_detail_.c_str());
    if (record_ == nullptr) return;
    try {
        record_->message = class_name_.c_str();
        record_->message += "::";
        record_->message += method.c_str();
        record_->message += ": ";
        record_->message += error_detail_.c_str();
        if (!record_->trace.empty()) record_->trace += '\n';
        record_->trace += record_->message;
        nequar::store_last_message(record_->message);
    } catch (const std::bad_alloc&) {
        // Out of memory while telling of a failure: the detail, set before, still stands.
    }
}

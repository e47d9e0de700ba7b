#pragma once

#include "nequar_algebra/frame/export.h"
#include "nequar_algebra/frame/string.h"

/// Root of every class: a name, the detail of the last failure, the error-trace flag, and the ways
/// in which a failure is reported.
///
/// A method that fails stores its error detail (a code such as "1", or a text such as "singular"),
/// then records its own name. The record reads "Class::method: detail". When the failure of one
/// method makes its caller fail, the caller records itself after it; the chain, innermost first, is
/// `gft_Get_Failure_Trace`. With the error-trace flag set every record is also printed to the
/// standard error; with the flag off nothing is printed. Nothing is thrown.
///
/// Two threads must not use one object at the same time; distinct objects are independent.
class NEQUAR_API CNqClass {
public:
    CNqClass() noexcept;
    /// Copies the name, the error detail and the error-trace flag; the record of failures stays
    /// with the object on which they happened.
    CNqClass(const CNqClass& other);
    CNqClass(CNqClass&& other) noexcept;
    virtual ~CNqClass();
    /// Copies the class name, then the error detail, then the error-trace flag.
    CNqClass& operator=(const CNqClass& other);
    CNqClass& operator=(CNqClass&& other) noexcept;
    /// The same as assignment, from a pointer; nothing when the source is the object itself.
    void cp_Copy(const CNqClass* other);

    /// Sets the error-trace flag.
    void zet_s(bool mode) noexcept { trace_mode_ = mode; }
    /// Hands this object's error-trace flag to one, three or five other objects.
    void zet_x(CNqClass* a) const;
    void zet_x(CNqClass* a, CNqClass* b, CNqClass* c) const;
    void zet_x(CNqClass* a, CNqClass* b, CNqClass* c, CNqClass* d, CNqClass* e) const;

    /// The name of the class, for example "CNqMatrix".
    const CNqString& gcn_Get_Class_Name() const noexcept { return class_name_; }
    /// The detail of the last failure; empty when there was none.
    const CNqString& ged_Get_Error_Detail() const noexcept { return error_detail_; }
    /// The error-trace flag.
    bool get_Get_Error_Trace_mode() const noexcept { return trace_mode_; }
    /// The last failure recorded on this object, "Class::method: detail"; empty when none.
    CNqString grm_Get_Recorded_Message() const;
    /// The records of the last failing call, innermost first, one per line; empty when none.
    CNqString gft_Get_Failure_Trace() const;
    /// Forgets the recorded message and the failure trace.
    void cr_Clear_Record();

protected:
    /// Reports a failure of the named method, for operations whose caller does not test a result.
    void zet_pme(const CNqString& method) const;
    /// Records a failure of the named method quietly, for operations that answer false.
    void zsm(const CNqString& method) const;
    /// Records the message of a failure that the caller, or a fatal report, makes known.
    void zsm_Save_Message(const CNqString& method) const;

    // ---- for the library's own classes ----
    //
    // Names and details given here are string literals: they are pointed at, not copied.

    void set_class_name(const char* literal) noexcept { class_name_ = CNqString::literal(literal); }
    void set_error_detail(const char* literal) const noexcept {
        error_detail_ = CNqString::literal(literal);
    }
    void set_error_detail(CNqString detail) const noexcept {
        error_detail_ = static_cast<CNqString&&>(detail);
    }

    /// Detail, then `zet_pme`.
    void report(const char* detail, const char* method) const;
    /// Detail, then `zsm`; always false, so that a method can return it.
    bool fail(const char* detail, const char* method) const;
    /// Takes the failure trace of an object that failed inside the current call into this object's
    /// trace; to be followed by `report` or `fail`.
    void adopt_failure_of(const CNqClass& inner) const;
    /// Detail, `zsm_Save_Message`, `Nq_Print_Message`, end of the process with status 0.
    [[noreturn]] void end_process(const char* detail, const char* method) const;

    /// Stands at the top of every method that calls other reporting methods of the same object:
    /// what these record during one outermost call forms one chain.
    class CallScope {
    public:
        explicit CallScope(const CNqClass* object) noexcept : object_(object) {
            if (object_->call_depth_++ == 0) object_->chain_is_open_ = false;
        }
        ~CallScope() {
            if (--object_->call_depth_ == 0) object_->chain_is_open_ = false;
        }
        CallScope(const CallScope&) = delete;
        CallScope& operator=(const CallScope&) = delete;

    private:
        const CNqClass* object_;
    };

private:
    struct Record;

    void record(const CNqString& method) const;
    void begin_chain_if_new() const;

    CNqString class_name_;
    mutable CNqString error_detail_;
    mutable Record* record_ = nullptr;
    mutable int call_depth_ = 0;
    mutable bool chain_is_open_ = false;
    bool trace_mode_ = false;
};

#include "nequar_algebra/frame/message.h"

#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <new>

#include "frame/message_store.h"

namespace nequar {
namespace {

struct LastMessage {
    std::mutex mutex;
    std::string text;
};

// Never destroyed: objects with static storage may still report while the process ends.
LastMessage& last_message() {
    alignas(LastMessage) static unsigned char place[sizeof(LastMessage)];
    static LastMessage* const message = new (place) LastMessage;
    return *message;
}

}  // namespace

void store_last_message(const std::string& message) {
    LastMessage& last = last_message();
    const std::lock_guard<std::mutex> lock(last.mutex);
    last.text = message;
}

}  // namespace nequar

CNqString Nq_Last_Message() {
    nequar::LastMessage& last = nequar::last_message();
    const std::lock_guard<std::mutex> lock(last.mutex);
    return CNqString(last.text.c_str());
}

bool Nq_Print_Message() {
    const CNqString message = Nq_Last_Message();
    if (message.size() == 0) return false;
    std::fprintf(stderr, "%s\n", message.c_str());
    return true;
}

void Nq_Printf(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    std::vprintf(format, arguments);
    va_end(arguments);
    std::putchar('\n');
}

#include "quarn/platform/message.h"

#include "quarn/platform/win32_api.h"

#include <atomic>

namespace Quarn {

namespace {

std::atomic<MessageHandler> g_handler = nullptr;

} // namespace

MessageHandler SetMessageHandler(MessageHandler handler) noexcept
{
    return g_handler.exchange(handler);
}

void ShowBlockingMessage(char const* text, char const* caption) noexcept
{
    if (MessageHandler const handler = g_handler.load()) {
        try {
            handler(text, caption);
        } catch (...) { // NOLINT(bugprone-empty-catch): the caller goes on whatever the handler does
        }
        return;
    }
    ::MessageBoxA(nullptr, text, caption, MB_OK | MB_ICONSTOP);
}

} // namespace Quarn

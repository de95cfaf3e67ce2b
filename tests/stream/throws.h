// The exceptions that streams throw, checked by type and text.
#pragma once

#include "quarn/stream/stream_exception.h"

#include <string>
#include <typeinfo>

#include <gtest/gtest.h>

// The text of the StreamException (that very type) that `action` throws.
template<typename Action>
std::string ThrownText(Action action)
{
    try {
        action();
    } catch (Quarn::StreamException const& e) {
        EXPECT_EQ(typeid(e), typeid(Quarn::StreamException));
        return e.GetString();
    }
    return "(nothing thrown)";
}

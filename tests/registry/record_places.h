// The two places of a packed record, a settings value and a registry value, with one face for typed tests.
#pragma once

#include "quarn/packing/pack.h"
#include "quarn/packing/unpack.h"
#include "quarn/properties/property_key.h"
#include "quarn/registry/registry_value.h"

#include "tests/registry/throw_away_key.h"

#include <gtest/gtest.h>

class PropertyRecord
{
public:
    PropertyRecord() : m_key("key", nullptr), m_value("value", Quarn::PropertyData(""), &m_key) {}

    template<typename... Args>
    bool Writef(char const* format, Args... args)
    {
        return m_value.Writef(format, args...);
    }
    template<typename... Args>
    bool Readf(char const* format, Args... args)
    {
        return m_value.Readf(format, args...);
    }
    template<typename... Items>
    bool Pack(Items const&... items)
    {
        return Quarn::Pack(m_value, items...);
    }
    template<typename... Items>
    Quarn::UnpackResult Unpack(Items&... items)
    {
        return Quarn::Unpack(m_value, items...);
    }
    void Store(Quarn::string const& text) { m_value.SetValue(text); }
    Quarn::string Stored() const { return m_value.GetValueString(); }

private:
    Quarn::PropertyKey m_key;
    Quarn::PropertyValue m_value;
};

class RegistryRecord
{
public:
    RegistryRecord() { m_key.Open(""); }

    template<typename... Args>
    bool Writef(char const* format, Args... args)
    {
        return m_value.Writef(format, args...);
    }
    template<typename... Args>
    bool Readf(char const* format, Args... args)
    {
        return m_value.Readf(format, args...);
    }
    template<typename... Items>
    bool Pack(Items const&... items)
    {
        return Quarn::Pack(m_value, items...);
    }
    template<typename... Items>
    Quarn::UnpackResult Unpack(Items&... items)
    {
        return Quarn::Unpack(m_value, items...);
    }
    void Store(Quarn::string const& text) { m_value.Write(text); }
    Quarn::string Stored()
    {
        Quarn::string text;
        m_value.Read(text, nullptr);
        return text;
    }

private:
    ThrowAwayKey m_place;
    Win32Quarn::CurrentUserKey m_key{m_place.Path()};
    Win32Quarn::RegistryValue m_value{m_key, "value"};
};

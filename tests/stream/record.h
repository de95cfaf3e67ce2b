// Records of generated fields, to write to one stream and read back from another.
#pragma once

#include "quarn/stream/istream.h"
#include "quarn/stream/ostream.h"
#include "quarn/text/string_list.h"
#include "quarn/time/time.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

class Field
{
public:
    virtual ~Field() = default;
    virtual void Write(Quarn::ostream& stream) const = 0;
    virtual void ReadAndCompare(Quarn::istream& stream) const = 0;
};

template<typename T>
class ValueField : public Field
{
public:
    explicit ValueField(T const& value) : m_value(value) {}
    void Write(Quarn::ostream& stream) const override { stream << m_value; }
    void ReadAndCompare(Quarn::istream& stream) const override
    {
        T value{};
        stream >> value;
        EXPECT_EQ(value, m_value);
    }

private:
    T m_value;
};

class BlockField : public Field
{
public:
    explicit BlockField(std::string bytes) : m_bytes(std::move(bytes)) {}
    void Write(Quarn::ostream& stream) const override { stream.write(m_bytes.data(), Count()); }
    void ReadAndCompare(Quarn::istream& stream) const override
    {
        std::string bytes(m_bytes.size(), '\0');
        stream.read(bytes.data(), Count());
        EXPECT_EQ(bytes, m_bytes);
    }

private:
    unsigned long Count() const { return static_cast<unsigned long>(m_bytes.size()); }

    std::string m_bytes;
};

class ListField : public Field
{
public:
    explicit ListField(Quarn::StringList list) : m_list(std::move(list)) {}
    void Write(Quarn::ostream& stream) const override
    {
        stream << static_cast<unsigned int>(m_list.size());
        for (Quarn::string const& text : m_list) {
            stream << text;
        }
    }
    void ReadAndCompare(Quarn::istream& stream) const override
    {
        Quarn::StringList list;
        stream >> list;
        EXPECT_EQ(list, m_list);
    }

private:
    Quarn::StringList m_list;
};

class TimeField : public Field
{
public:
    explicit TimeField(Quarn::TIME words) : m_words(words) {}
    void Write(Quarn::ostream& stream) const override { stream << Quarn::Time(m_words); }
    void ReadAndCompare(Quarn::istream& stream) const override
    {
        Quarn::Time time;
        stream >> time;
        Quarn::TIME const words = time;
        EXPECT_EQ(words.High, m_words.High);
        EXPECT_EQ(words.Low, m_words.Low);
    }

private:
    Quarn::TIME m_words;
};

class Record
{
public:
    Record(std::mt19937& random, std::size_t count) : m_random(random)
    {
        while (m_fields.size() < count) {
            m_fields.push_back(MakeField());
        }
    }

    void Write(Quarn::ostream& stream) const
    {
        stream << Quarn::Stream::HeaderBlock{0xABCD, 3};
        for (auto const& field : m_fields) {
            field->Write(stream);
        }
    }
    void ReadAndCompare(Quarn::istream& stream) const
    {
        EXPECT_EQ(stream.ReadAndVerifyHeader(0xABCD, 5), 3UL);
        for (auto const& field : m_fields) {
            field->ReadAndCompare(stream);
        }
    }

private:
    template<typename T>
    static std::unique_ptr<Field> Value(T value)
    {
        return std::make_unique<ValueField<T>>(value);
    }

    std::string Text(std::size_t limit)
    {
        std::string text(m_random() % (limit + 1), '\0');
        for (char& c : text) {
            c = static_cast<char>(1 + m_random() % 255);
        }
        return text;
    }

    std::unique_ptr<Field> MakeField()
    {
        auto const number = static_cast<std::uint32_t>(m_random());
        switch (m_random() % 18) {
        case 0:
            return Value(static_cast<char>(number));
        case 1:
            return Value(static_cast<unsigned char>(number));
        case 2:
            return Value(number % 2 != 0);
        case 3:
            return Value(static_cast<short>(number));
        case 4:
            return Value(static_cast<unsigned short>(number));
        case 5:
            return Value(static_cast<int>(number));
        case 6:
            return Value(static_cast<unsigned int>(number));
        case 7:
            return Value(static_cast<long>(static_cast<std::int32_t>(number)));
        case 8:
            return Value(static_cast<unsigned long>(number));
        case 9:
            return Value(static_cast<float>(number) / 7);
        case 10:
            return Value(static_cast<double>(number) / -7);
        case 11:
            return Value(static_cast<long double>(number));
        case 12:
            return Value(Text(20));
        case 13:
            return Value(Quarn::string(Text(3000)));
        case 14:
            return Value(Quarn::string(Text(150000)));
        case 15:
            return std::make_unique<BlockField>(Text(500));
        case 16:
            return std::make_unique<ListField>(Quarn::StringList(number % 5, Text(60)));
        default:
            return std::make_unique<TimeField>(Quarn::TIME{number, ~number});
        }
    }

    std::mt19937& m_random;
    std::vector<std::unique_ptr<Field>> m_fields;
};

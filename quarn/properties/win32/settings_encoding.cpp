#include "quarn/properties/win32/settings_encoding.h"

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>

#include <xercesc/framework/XMLRecognizer.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/TransService.hpp>
#include <xercesc/util/XMLString.hpp>
#include <xercesc/util/XMLUni.hpp>

namespace Quarn::detail {

namespace {

// How many bytes each of the first characters has: "<" and what follows, or a mark of the byte order.
std::size_t CharacterWidth(std::string_view document)
{
    bool const hasMark = document.starts_with("\xFF\xFE") || document.starts_with("\xFE\xFF");
    std::string_view const first = document.substr(hasMark ? 2 : 0, 4);
    auto const zeros = std::count(first.begin(), first.end(), '\0');
    return zeros >= 3 ? 4 : zeros == 2 || hasMark ? 2 : 1;
}

// Whether an encoding may be that of characters of this width at the beginning.
bool IsPossible(XMLCh const* encoding, std::size_t width)
{
    using xercesc::XMLUni;
    auto const isOneOf = [encoding](std::initializer_list<XMLCh const*> names) {
        return std::any_of(names.begin(), names.end(), [encoding](XMLCh const* name) {
            return xercesc::XMLString::compareIStringASCII(encoding, name) == 0;
        });
    };
    if (isOneOf({XMLUni::fgUTF16EncodingString, XMLUni::fgUTF16EncodingString2,
                 XMLUni::fgUTF16EncodingString3, XMLUni::fgUTF16EncodingString4,
                 XMLUni::fgUTF16EncodingString5, XMLUni::fgUTF16EncodingString6,
                 XMLUni::fgUTF16EncodingString7})) {
        return width == 2;
    }
    if (isOneOf({XMLUni::fgUCS4EncodingString, XMLUni::fgUCS4EncodingString2, XMLUni::fgUCS4EncodingString3,
                 XMLUni::fgUCS4EncodingString4, XMLUni::fgUCS4EncodingString5})) {
        return width == 4;
    }
    return true; // the XML library's to say
}

// Whether a character of two or four bytes stands for one that may be in a document; the second half of a
// pair only where the first one was before it.
bool IsSound(std::uint32_t character, bool isWide, bool& hasFirstHalf)
{
    bool const isSecondHalf = character >= 0xDC00 && character < 0xE000;
    bool const isInPlace = isSecondHalf == hasFirstHalf;
    hasFirstHalf = character >= 0xD800 && character < 0xDC00;
    return character != 0 && character <= 0x10FFFF && isInPlace && !(isWide && hasFirstHalf);
}

// Whether the XML library leaves this encoding to the system's converter.
bool IsConverted(XMLCh const* encoding)
{
    std::basic_string<XMLCh> name(encoding, xercesc::XMLString::stringLen(encoding));
    xercesc::XMLString::upperCaseASCII(name.data());
    return xercesc::XMLRecognizer::encodingForName(name.c_str()) == xercesc::XMLRecognizer::OtherEncoding;
}

} // namespace

bool CanBeEncodingOf(std::string_view document, XMLCh const* encoding)
{
    return IsPossible(encoding, CharacterWidth(document));
}

bool HasCharactersOf(std::string_view document, XMLCh const* encoding, xercesc::MemoryManager* memory)
{
    if (*encoding == 0 || CharacterWidth(document) != 1 || !IsConverted(encoding)) {
        return true;
    }
    constexpr XMLSize_t BlockSize = 4096;
    constexpr XMLCh Replacement = 0xFFFD;
    xercesc::XMLTransService::Codes result{};
    std::unique_ptr<xercesc::XMLTranscoder> const converter(
        xercesc::XMLPlatformUtils::fgTransService->makeNewTranscoderFor(encoding, result, BlockSize, memory));
    XMLCh characters[BlockSize];
    unsigned char sizes[BlockSize];
    // Spaces behind it bring a character to light that is cut at its end.
    for (std::string_view rest : {document, std::string_view("    ")}) {
        while (converter && !rest.empty()) {
            XMLSize_t eaten = 0;
            XMLSize_t const count =
                converter->transcodeFrom(reinterpret_cast<XMLByte const*>(rest.data()), rest.size(),
                                         characters, BlockSize, eaten, sizes);
            if (eaten == 0 || std::find(characters, characters + count, Replacement) != characters + count) {
                return false;
            }
            rest.remove_prefix(eaten);
        }
    }
    return true; // or without a converter, which is the XML library's to say
}

bool HasSoundCharacters(std::string_view document)
{
    std::size_t const width = CharacterWidth(document);
    if (width == 1) {
        // Behind the last element there is white space, and nothing else that is not refused anyway.
        constexpr char const* WhiteSpace = " \t\r\n";
        std::size_t const first = document.find_first_not_of(WhiteSpace);
        bool const isAscii =
            first != document.npos && (document[first] == '<' || document.starts_with("\xEF\xBB\xBF"));
        return document.find('\0') == document.npos &&
               (!isAscii || document[document.find_last_not_of(WhiteSpace)] == '>');
    }
    bool const isBigEndian = document.starts_with('\0') || document.starts_with("\xFE\xFF");
    bool hasFirstHalf = false;
    for (std::size_t at = 0; at < document.size(); at += width) {
        std::string_view const bytes = document.substr(at, width);
        std::uint32_t character = 0;
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            auto const byte = static_cast<unsigned char>(bytes[isBigEndian ? i : bytes.size() - 1 - i]);
            character = character << 8U | byte;
        }
        if (bytes.size() != width || !IsSound(character, width == 4, hasFirstHalf)) {
            return false;
        }
    }
    return !hasFirstHalf;
}

} // namespace Quarn::detail

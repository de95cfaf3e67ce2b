#include "xml_wild_documents.h"

#include <algorithm>

namespace documents {

namespace {

std::u32string Wide(std::string const& ascii)
{
    return {ascii.begin(), ascii.end()};
}

void PutUtf8(std::string& bytes, char32_t c)
{
    auto const put = [&bytes](char32_t byte) { bytes += static_cast<char>(byte); };
    if (c < 0x80) {
        put(c);
    } else if (c < 0x800) {
        put(0xC0 | c >> 6);
        put(0x80 | (c & 0x3F));
    } else if (c < 0x10000) { // lone surrogates, too, which are wrong
        put(0xE0 | c >> 12);
        put(0x80 | (c >> 6 & 0x3F));
        put(0x80 | (c & 0x3F));
    } else {
        put(0xF0 | c >> 18);
        put(0x80 | (c >> 12 & 0x3F));
        put(0x80 | (c >> 6 & 0x3F));
        put(0x80 | (c & 0x3F));
    }
}

void PutUtf16(std::string& bytes, char32_t c, bool isBigEndian)
{
    auto const put = [&](char32_t unit) {
        char const low = static_cast<char>(unit);
        char const high = static_cast<char>(unit >> 8);
        bytes += isBigEndian ? high : low;
        bytes += isBigEndian ? low : high;
    };
    if (c < 0x10000) {
        put(c);
    } else {
        put(0xD800 + (c - 0x10000) / 0x400);
        put(0xDC00 + (c - 0x10000) % 0x400);
    }
}

struct Encoding
{
    char const* name;
    char32_t limit;
};

constexpr Encoding Encodings[] = {
    {"UTF-8", 0x110000}, {"UTF-16", 0x110000},  {"UTF-16LE", 0x110000}, {"UTF-16BE", 0x110000},
    {"US-ASCII", 0x80},  {"ISO-8859-1", 0x100}, {"ISO-8859-5", 0x80},
};

} // namespace

char32_t WildGenerator::Character()
{
    // The ends of the ranges that XML names, where mistakes are made.
    static constexpr char32_t Edges[] = {
        0x09,   0x0A,   0x0D,   0x20,   0x7F,   0x85,   0xA0,   0xB7,    0xC0,    0xD7,    0xF7,   0xFF,
        0x131,  0x132,  0x2BB,  0x387,  0x3D0,  0x660,  0xE33,  0x1100,  0x2028,  0x20D0,  0x2160, 0x3007,
        0x4E00, 0x9FA5, 0xAC00, 0xD7A3, 0xD7FF, 0xE000, 0xFFFD, 0x10000, 0x1F600, 0x10FFFF};
    static constexpr char32_t Wrong[] = {0x00,   0x01,   0x08,   0x0B,   0x0C,  0x1F,
                                         0xD800, 0xDBFF, 0xDC00, 0xFFFE, 0xFFFF};
    char32_t c = 'a' + static_cast<char32_t>(Below(26));
    if (m_isWild && OneIn(60)) {
        c = Wrong[Below(std::size(Wrong))];
    } else if (OneIn(4)) {
        c = OneIn(2) ? Edges[Below(std::size(Edges))] : static_cast<char32_t>(0x20 + Below(0xD7E0));
    }
    return c < m_limit && c != '<' && c != '&' ? c : 'x';
}

WildGenerator::Text WildGenerator::Reference()
{
    static std::vector<Text> const Wrong = {
        U"&#0;",     U"&#1;",       U"&#xB;",  U"&#xD800;",      U"&#xDFFF;",      U"&#xFFFE;",
        U"&#xFFFF;", U"&#x110000;", U"&#;",    U"&#x;",          U"&#x1G;",        U"&#-65;",
        U"&# 65;",   U"&#65",       U"&;",     U"&unknown;",     U"&amp",          U"& ",
        U"&AMP;",    U"&Lt;",       U"&#X41;", U"&#4294967361;", U"&#x100000041;", U"&#99999999999999999999;",
        U"&lt ;",    U"&%a;",       U"&a:b;"};
    static std::vector<Text> const Right = {U"&amp;",
                                            U"&lt;",
                                            U"&gt;",
                                            U"&quot;",
                                            U"&apos;",
                                            U"&#9;",
                                            U"&#10;",
                                            U"&#13;",
                                            U"&#x20;",
                                            U"&#65;",
                                            U"&#x41;",
                                            U"&#xD7FF;",
                                            U"&#xE000;",
                                            U"&#xFFFD;",
                                            U"&#x10000;",
                                            U"&#x10FFFF;",
                                            U"&#x00000000000041;",
                                            U"&#00065;",
                                            U"&#x1F600;",
                                            U"&#233;",
                                            U"&#x85;",
                                            U"&#127;"};
    return m_isWild && OneIn(12) ? OneOf(Wrong) : OneOf(Right);
}

WildGenerator::Text WildGenerator::Data(bool inAttribute)
{
    static std::vector<Text> const Pieces = {U"]]", U"]", U"]] >", U">",   U"\r\n", U"\r",  U"\n",
                                             U"\t", U" ", U"--",   U"%a;", U"\\",   U"0aff"};
    Text text;
    for (std::size_t i = Below(8); i > 0; --i) {
        switch (Below(6)) {
        case 0:
            text += Reference();
            break;
        case 1:
            text += OneOf(Pieces);
            break;
        default:
            text += Character();
            break;
        }
    }
    if (m_isWild && OneIn(30)) {
        text += inAttribute ? U"<" : U"]]>";
    }
    if (inAttribute) {
        text.erase(std::remove_if(text.begin(), text.end(), [](char32_t c) { return c == '\'' || c == '"'; }),
                   text.end());
    }
    return text;
}

// Of an element or attribute that leaves nothing. Of other alphabets a few characters, which every edition of
// XML has or has not in names.
WildGenerator::Text WildGenerator::Name()
{
    static std::vector<Text> const Starts = {U"_",      U"e",      U"Z",      U":",
                                             U"\u00C0", U"\u0416", U"\u4E00", U"\uAC00"};
    static std::vector<Text> const Others = {U"a",      U"-",      U".",      U"1",     U":",
                                             U"\u00B7", U"\u0301", U"\u00E9", U"\u0416"};
    static std::vector<Text> const Wrong = {U"-",      U".",      U"1",      U"\u00B7", U"\u0301", U"\u00D7",
                                            U"\u00F7", U"\u037E", U"\u2010", U"\u2190", U"\u3000", U"\uE000",
                                            U"\uFFFE", U"@",      U"$",      U"\u00A0"};
    Text name = OneOf(Starts);
    if (m_isWild && OneIn(8)) {
        name = OneOf(Wrong);
    }
    for (std::size_t i = Below(4); i > 0; --i) {
        name += OneOf(m_isWild && OneIn(20) ? Wrong : Others);
    }
    bool const isRepresentable =
        std::all_of(name.begin(), name.end(), [this](char32_t c) { return c < m_limit; });
    return isRepresentable ? name : U"e";
}

WildGenerator::Text WildGenerator::Attributes(bool isValue)
{
    auto const attribute = [this](Text const& name, Text const& value) {
        Text const quote = OneIn(2) ? U"'" : U"\"";
        Text const equals = OneIn(8) ? U" =\n " : U"=";
        return OneOf({U" ", U" ", U" ", U"\n", U"\t "}) + name + equals + quote + value + quote;
    };
    Text text = attribute(U"Name", Data(true));
    if (isValue) {
        Text const type = attribute(U"Type", OneOf({U"string", U"string", U"int32", U"binary", U"other"}));
        text = OneIn(3) ? type + text : text + type;
    }
    if (OneIn(6)) {
        text += attribute(Name(), Data(true));
    }
    if (m_isWild && OneIn(25)) {
        text += OneOf({U" Name='again'", U" a=b", U" a", U" a='b'c='d'", U" a='b", U" =''", U"a='b'",
                       U" a==''", U" 1='a'"});
    }
    return text;
}

// What is neither element nor text.
WildGenerator::Text WildGenerator::Section()
{
    static std::vector<Text> const Right = {
        U"<!---->",         U"<!-- c -->",       U"<!-- - <a> & ]]> -->",
        U"<![CDATA[]]>",    U"<![CDATA[<&]]]]>", U"<![CDATA[ ]] > --> ]]>",
        U"<?p?>",           U"<?p d?d ?>",       U"<?p-1.x <&>--?>",
        U"<?xml-style x?>", U"<?xmlx?>"};
    static std::vector<Text> const Wrong = {U"<!-- -- -->",
                                            U"<!--->",
                                            U"<!-- --->",
                                            U"<!- c -->",
                                            U"<![CDATA[",
                                            U"<![cdata[x]]>",
                                            U"<![CDATA [x]]>",
                                            U"<?xml?>",
                                            U"<?XML a?>",
                                            U"<?xMl?>",
                                            U"<?xml version='1.0'?>",
                                            U"<? p?>",
                                            U"<?1?>",
                                            U"<?p",
                                            U"<?p>",
                                            U"<?\?>",
                                            U"<!ELEMENT a ANY>",
                                            U"<!>",
                                            U"<![INCLUDE[x]]>",
                                            U"<![CDATA[\u0001]]>",
                                            U"<!--\uFFFE-->",
                                            U"<?p \u0008?>"};
    return m_isWild && OneIn(6) ? OneOf(Wrong) : OneOf(Right);
}

WildGenerator::Text WildGenerator::Element(int depth)
{
    bool const isValue = !OneIn(3) || depth == 0;
    Text const name = isValue ? U"Value" : OneIn(6) ? Name() : Text(U"Key");
    Text const start = U"<" + name + Attributes(isValue) + (OneIn(10) ? U" " : U"");
    if (OneIn(10)) {
        return start + U"/>";
    }
    Text content = isValue ? Data(false) : Children(depth - 1);
    if (isValue && OneIn(6)) {
        content += Section() + Data(false);
    }
    Text const end = m_isWild && OneIn(40) ? OneOf({U"value", U"Value2", U" Value", U"", U"Value/"}) : name;
    return start + U">" + content + U"</" + end + (OneIn(10) ? U"\r\n>" : U">");
}

WildGenerator::Text WildGenerator::Children(int depth)
{
    Text text;
    for (std::size_t i = Below(4); i > 0; --i) {
        text += OneIn(2) ? Text(U"\n  ") : OneIn(4) ? Data(false) : Text();
        text += Element(depth);
    }
    // It ends the reading of all keys.
    return OneIn(20) ? text + Section() : text;
}

WildGenerator::Text WildGenerator::Declaration(std::string const& encoding)
{
    bool const isNeeded = encoding != "UTF-8" && encoding != "UTF-16";
    if (!isNeeded && OneIn(2)) {
        return {};
    }
    if (m_isWild && OneIn(8)) {
        return OneOf({U"<?xml encoding='UTF-8' version='1.0'?>", U"<?xml version='1.0' standalone='maybe'?>",
                      U"<?xml version='1.0'", U"<?xml version='1.0'encoding='UTF-8'?>", U"<?xml?>",
                      U"<?xml version='1.0' encoding=''?>", U"<?xml version='1.0' encoding='8-UTF'?>",
                      U"<?xml version='1.0' a='b'?>", U" <?xml version='1.0'?>", U"<?xml version=1.0?>",
                      U"<?XML version='1.0'?>", U"<?xml version='1.0' standalone='yes' encoding='UTF-8'?>",
                      U"<?xml version='1.0\"?>", U"<?xml version='1.0'>", U"<?xml version='1.0' ? >"});
    }
    if (m_isWild && OneIn(8)) { // not that of the bytes
        return U"<?xml version='1.0' encoding='" + OneOf({U"UTF-8", U"UTF-16", U"ISO-8859-1", U"US-ASCII"}) +
               U"'?>";
    }
    Text text = U"<?xml version='1.0'";
    // The order of the bytes is no part of the name where there is a mark.
    text += isNeeded || OneIn(2)
                ? U" encoding=\"" + Wide(encoding.substr(0, 6) == "UTF-16" ? "UTF-16" : encoding) + U"\""
                : U"";
    text += OneIn(6) ? OneOf({U" standalone='yes'", U"\tstandalone = \"no\" "}) : Text();
    return text + U"?>";
}

// Before or behind the root element.
WildGenerator::Text WildGenerator::Around()
{
    if (m_isWild && OneIn(12)) {
        return OneOf({U"<!-- c -->", U"<?p?>", U"<!DOCTYPE r>", U"<!DOCTYPE r [<!ENTITY e 'x'>]>", U"text",
                      U"&#32;", U"<![CDATA[ ]]>", U"<r/>", U"</r>", U"\u0000"});
    }
    return OneOf({U"", U"", U"\n", U" \t\r\n"});
}

// Something small anywhere.
void WildGenerator::Break(Text& document)
{
    std::size_t const at = Below(document.size());
    switch (Below(5)) {
    case 0:
        document.resize(at);
        break;
    case 1:
        document.erase(at, 1 + Below(3));
        break;
    case 2:
        document.insert(at, document.substr(at, 1 + Below(8)));
        break;
    case 3:
        document.insert(
            at, OneOf({U"<", U">", U"&", U"'", U"\"", U"/", U"!", U"?", U"]]>", U"--", U" ", U"\u0001"}));
        break;
    default:
        document[at] = static_cast<char32_t>(Below(0x80));
        break;
    }
}

std::string WildGenerator::Encode(Text const& document, std::string const& encoding)
{
    bool const isUtf16 = encoding.starts_with("UTF-16");
    bool const isBigEndian = encoding == "UTF-16BE" || (encoding == "UTF-16" && OneIn(2));
    std::string bytes;
    if (encoding == "UTF-8" && OneIn(4)) {
        bytes = "\xEF\xBB\xBF";
    } else if (encoding == "UTF-16") {
        bytes = isBigEndian ? "\xFE\xFF" : "\xFF\xFE";
    }
    for (char32_t const c : document) {
        if (isUtf16) {
            PutUtf16(bytes, c, isBigEndian);
        } else if (encoding == "UTF-8") {
            PutUtf8(bytes, c);
        } else {
            bytes += static_cast<char>(c);
        }
    }
    if (m_isWild && OneIn(6) && !isUtf16 && !bytes.empty()) {
        static std::vector<std::string> const Wrong = {"\x80",
                                                       "\xC0\xAF",
                                                       "\xC3",
                                                       "\xE0\x80\xAF",
                                                       "\xED\xA0\x80",
                                                       "\xF4\x90\x80\x80",
                                                       "\xF8\x88\x80\x80\x80",
                                                       "\xFE",
                                                       "\xFF",
                                                       std::string(1, '\0'),
                                                       "\xEF\xBF\xBE",
                                                       "\xE2\x82"};
        bytes.insert(Below(bytes.size()), Wrong[Below(Wrong.size())]);
    }
    if (m_isWild && OneIn(8) && !bytes.empty()) {
        bytes.resize(Below(bytes.size()));
    }
    return bytes;
}

std::string WildGenerator::Next()
{
    Encoding const& encoding = Encodings[OneIn(2) ? 0 : Below(std::size(Encodings))];
    m_limit = encoding.limit;
    m_isWild = !OneIn(3);
    Text document = Declaration(encoding.name) + Around();
    Text const root = OneIn(6) ? Name() : Text(U"Settings");
    document += U"<" + root + U">" + OneOf({U"", U"\n", U" text "});
    document += U"<Key" + Attributes(false) + U">" + Children(3) + U"</Key>";
    document += OneIn(8) ? Section() + Element(1) : OneOf({U"", U"\n"});
    document += U"</" + root + U">" + Around();
    if (m_isWild && OneIn(4)) {
        Break(document);
    }
    return Encode(document, encoding.name);
}

} // namespace documents

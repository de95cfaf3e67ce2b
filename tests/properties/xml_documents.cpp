#include "xml_documents.h"

#include <initializer_list>

namespace documents {

namespace {

using namespace std::string_literals;

std::string InKey(std::string const& content)
{
    return "<Quarn_Properties><Key Name='Root'>" + content + "</Key></Quarn_Properties>";
}

std::string const ValueElement = "<Value Name='a' Type='string'>text</Value>";

std::string Utf16(std::string const& ascii)
{
    std::string bytes = "\xFF\xFE";
    for (char const c : ascii) {
        bytes += c;
        bytes += '\0';
    }
    return bytes;
}

} // namespace

std::vector<std::string> const GoodDocuments = {
    InKey(""),
    InKey(ValueElement),
    "\xEF\xBB\xBF" + InKey(ValueElement),
    Utf16(InKey(ValueElement)),
    "<?xml version='1.0' encoding='ISO-8859-1'?>" + InKey("<Value Name='\xE9' Type='string'>\xFC</Value>"),
    "<?xml version='1.0' encoding='UTF-8' standalone='yes'?>\n" + InKey(ValueElement) + "\n \n",
    InKey(" text is skipped " + ValueElement + " &amp; &#65; "),
    // Empty elements and texts, and an empty name.
    "<r><Key Name=''/></r>",
    InKey("<Value Name='' Type='string'/><Value Name='' Type='string'></Value>"),
    // The types, an unknown one too.
    InKey("<Value Name='b' Type='binary'>0aFf7</Value><Value Name='i' Type='int32'>-12abc</Value>"
          "<Value Name='u' Type='unknown'/><Value Name='q' Type='Binary'>00</Value>"
          "<Value Name='e' Type=''>1</Value>"),
    // A value's text is all the text in it.
    InKey("<Value Name='a' Type='string'>a<!-- no -->b<?no no?>c<![CDATA[d<&>]]>e<x>f<y "
          "Name='n'/>g</x>h</Value>"),
    InKey("<Value Name='a' Type='string'><Value Name='b' Type='string'>inner</Value></Value>"),
    InKey("<Value Name='a' Type='string'><![CDATA[]]></Value>"),
    InKey("<Value Name='a' Type='string'> \t\n </Value>"),
    InKey("<Value Name='a\tb\nc' Type='string'>\r\n\r&#13;&#10;&#9;</Value>"),
    InKey("<Value Name='a&#9;b&#10;c&#13;d&lt;&quot;&apos;' Type='string'>]] ></Value>"),
    // Other elements are skipped with all in them.
    InKey("<Comment Name='c'><Value Name='no' Type='string'>no</Value><!-- "
          "--><?p?><![CDATA[x]]><z/></Comment>" +
          ValueElement),
    InKey("<value Name='no' Type='string'>no</value><key Name='no'/>"),
    // The root's first element is the key, whatever its name; what follows does not count.
    "<r><Other Name='n'>" + ValueElement + "</Other></r>",
    "<r> text <Key Name='n'/><Key Name='no'/><!-- --><?p?><![CDATA[ ]]><x/> text</r>",
    // Key names are paths.
    InKey("<Key Name='a\\b/c;d,e'><Value Name='v' Type='int32'>1</Value></Key>"),
    InKey("<Key Name='\\a'/><Key Name='b\\'/><Key Name='/'/><Key Name=''>" + ValueElement + "</Key>"),
    // Merging without case.
    InKey("<Key Name='K'>" + ValueElement +
          "</Key><Key Name='k'><Value Name='A' Type='int32'>2</Value></Key>"),
    // Names with colons and declarations of namespaces are plain names.
    "<a:b xmlns:c='d'><Key Name='n' c:x='1' xmlns='e'>" + ValueElement + "</Key></a:b>",
    "<r xsi:schemaLocation='a b' xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance'><Key Name='n'/></r>",
    "<?xml version='1.1'?><r><Key Name='n'><Value Name='v' Type='string'>&#1;</Value></Key></r>",
};

std::vector<std::string> const PartialDocuments = {
    InKey(ValueElement + "<Value Name='b'>no type</Value><Value Name='c' Type='string'/>"),
    InKey(ValueElement + "<Value Type='string'>no name</Value><Value Name='c' Type='string'/>"),
    InKey(ValueElement + "<Value/>" + ValueElement),
    InKey(ValueElement + "<Comment>no name</Comment><Value Name='c' Type='string'/>"),
    InKey(ValueElement + "<Key>" + ValueElement + "</Key><Value Name='c' Type='string'/>"),
    InKey(ValueElement + "<!-- comment --><Value Name='c' Type='string'/>"),
    InKey(ValueElement + "<?target data?><Value Name='c' Type='string'/>"),
    InKey(ValueElement + "<![CDATA[ ]]><Value Name='c' Type='string'/>"),
    InKey(ValueElement + "<![CDATA[]]><Value Name='c' Type='string'/>"),
    // The end of an inner key's reading is the end of all.
    InKey("<Key Name='k'>" + ValueElement + "<Key Name='l'><x/></Key></Key><Value Name='c' Type='string'/>"),
    InKey("<Key Name='a\\b'><!-- --></Key><Key Name='c'/>"),
    // A lower-case attribute is another one.
    InKey("<Value name='a' Type='string'/>"),
    InKey("<Value Name='a' type='string'/>"),
};

std::vector<std::string> const KeylessDocuments = {
    "<r/>",
    "<r></r>",
    "<r> text </r>",
    "<r><Key/></r>",
    "<r><Key name='n'/><Key Name='m'/></r>",
    "<r><!-- comment --><Key Name='n'/></r>",
    "<r><?p?><Key Name='n'/></r>",
    "<r><![CDATA[ ]]><Key Name='n'/></r>",
    "<r><![CDATA[]]><Key Name='n'/></r>",
};

std::vector<std::string> const RefusedDocuments = {
    "",
    " ",
    "\0"s,
    std::string(1000, '\0'),
    "text",
    "<",
    "<r>",
    "<?xml version='1.0'?>",
    "<!-- comment -->" + InKey(ValueElement),
    InKey(ValueElement) + "<!-- comment -->",
    "<?p?>" + InKey(ValueElement),
    InKey(ValueElement) + "<?p?>",
    " <?xml version='1.0'?>" + InKey(ValueElement),
    "<!DOCTYPE Quarn_Properties>" + InKey(ValueElement),
    "<!DOCTYPE r [<!ENTITY e 'x'>]><r><Key Name='n'/></r>",
    "<!DOCTYPE r SYSTEM 'missing.dtd'><r><Key Name='n'/></r>",
    InKey(ValueElement) + "<!DOCTYPE r>",
    InKey(ValueElement) + InKey(ValueElement),
    InKey(ValueElement) + "x",
    InKey("&unknown;"),
    InKey("<Value Name='a' Type='string'>&unknown;</Value>"),
    InKey("<Value Name='a' Name='b' Type='string'/>"),
    InKey("<Value Name='a'Type='string'/>"),
    InKey("<Value Name=a Type='string'/>"),
    InKey("<Value Name='<' Type='string'/>"),
    InKey("<Value Name='a' Type='string'>]]></Value>"),
    InKey("<Value Name='a' Type='string'>\x01</Value>"),
    InKey("<Value Name='a' Type='string'>&#1;</Value>"),
    InKey("<Value Name='a' Type='string'>&#0;</Value>"),
    InKey("<Value Name='a' Type='string'>&#xFFFE;</Value>"),
    InKey("<Value Name='a' Type='string'>&#xD800;</Value>"),
    InKey("<Value Name='a' Type='string'>\xFF</Value>"),
    InKey("<Value Name='a' Type='string'>\xC3</Value>"),
    InKey("<Value Name='a' Type='string'>\xED\xA0\x80</Value>"),
    InKey("<Value Name='a' Type='string'><!-- -- --></Value>"),
    InKey("<Value Name='a' Type='string'><?xml no?></Value>"),
    InKey("<x></y>"),
    "<r><Key Name='n'><x/></Key>",
    "<?xml version='1.0' encoding='nonsense'?>" + InKey(ValueElement),
    "<?xml version='9.0'?>" + InKey(ValueElement),
    "<?xml version='1.2'?>" + InKey(ValueElement),
    Utf16(InKey(ValueElement)).substr(0, 41),
    "\xFE\xFF" + InKey(ValueElement),
};

std::string Generator::Text()
{
    static std::vector<std::string> const Texts = {
        "",     " ",     "\n  ",    "text",       "a b",    "0aff", "-17",    "&amp;",           "&lt;&gt;",
        "\r\n", "&#13;", "&#xA;\t", "]]",         "\r",     "12x",  "&quot;", "<![CDATA[<>&]]>", "\xC3\xA9",
        "'",    "\"",    "&#xE9;",  "x<!--y-->z", "<?p q?>"};
    std::string text;
    for (std::size_t i = Below(4); i > 0; --i) {
        text += OneOf(Texts);
    }
    return text;
}

std::string Generator::Attributes(std::string const& element)
{
    static std::vector<std::string> const Names = {"",     "a",     "A",     "b",       "c d",
                                                   "a\\b", "B/c",   ";x",    "y,",      "a:b",
                                                   "=1",   "&amp;", "&#10;", "default", "DefaultValue"};
    static std::vector<std::string> const Types = {"string",  "string", "binary", "int32",
                                                   "unknown", "String", ""};
    std::string text;
    if (!OneIn(40)) {
        text += " Name='" + OneOf(Names) + "'";
    }
    if (element == "Value" ? !OneIn(40) : OneIn(20)) {
        std::string const type = " Type=\"" + OneOf(Types) + "\"";
        text = OneIn(3) ? type + text : text + "\n" + type;
    }
    if (OneIn(20)) {
        text += " Other='1'";
    }
    return text;
}

std::string Generator::Element(std::string const& element, int depth)
{
    std::string const start = "<" + element + Attributes(element);
    if (OneIn(8)) {
        return start + "/>";
    }
    return start + ">" +
           (element == "Value" && !OneIn(10) ? Text() : Content(depth - 1, element == "Value")) + "</" +
           element + (OneIn(10) ? " >" : ">");
}

std::string Generator::Content(int depth, bool inValue)
{
    static std::vector<std::string> const Elements = {"Value", "Value", "Value", "Key", "Key", "Comment"};
    std::string text;
    for (std::size_t i = Below(5); i > 0 && depth > 0; --i) {
        if (OneIn(3)) {
            text += OneOf(std::vector<std::string>{"\n  ", " ", "text"});
        }
        if (OneIn(inValue ? 4 : 60)) {
            text +=
                OneOf(std::vector<std::string>{"<!-- c -->", "<?p d?>", "<![CDATA[ c ]]>", "<![CDATA[]]>"});
        }
        text += Element(OneOf(Elements), depth);
    }
    return text;
}

std::string Generator::Misc()
{
    if (!OneIn(12)) {
        return OneIn(3) ? "\n" : "";
    }
    return OneOf(std::vector<std::string>{"<!-- c -->", "<?p d?>", "<!DOCTYPE Settings>", " \n", "\t"});
}

std::string Generator::Document()
{
    std::string text = OneIn(4) ? "<?xml version='1.0'?>" : "";
    text += Misc() + "<Settings>";
    if (OneIn(10)) {
        text += OneOf(std::vector<std::string>{"<!-- c -->", "<?p d?>", "<![CDATA[ c ]]>", "text", "\n\n"});
    }
    if (!OneIn(12)) {
        text += Element(OneIn(10) ? "Other" : "Key", 5);
    }
    if (OneIn(10)) {
        text += Content(2, false);
    }
    return text + "</Settings>" + Misc();
}

std::string Generator::Damaged(std::string document)
{
    for (std::size_t i = 1 + Below(3); i > 0 && !document.empty(); --i) {
        std::size_t const at = Below(document.size());
        switch (Below(4)) {
        case 0:
            document[at] =
                OneOf(std::vector<char>{'<', '>', '&', '"', '\'', '/', '!', '?', '\0', '\x01', '\xFF', 'x'});
            break;
        case 1:
            document.erase(at, 1 + Below(4));
            break;
        case 2:
            document.insert(at, document.substr(at, 1 + Below(12)));
            break;
        default:
            if (OneIn(4)) {
                document.resize(at);
            }
            break;
        }
    }
    return document;
}

} // namespace documents

#include "JsonTextTable.h"

namespace tembra {

namespace {

/// The bytes of a literal, also behind U+0000.
template<size_t size>
QByteArray bytes(const char (&literal)[size])
{
    return QByteArray(literal, qsizetype(size) - 1);
}

constexpr auto empty = "the file is empty";
constexpr auto cutShort = "it ends too early";
constexpr auto valueWrong = "a value is missing or makes no sense";
constexpr auto commaMissing = "a comma or closing bracket is missing";
constexpr auto nameMissing = "the name of a value is missing";
constexpr auto colonMissing = "a colon is missing";
constexpr auto moreFollows = "something follows after its end";
constexpr auto digitsMissing = "a number lacks digits";
constexpr auto escapeWrong = "a text holds a control character, or a backslash that means nothing";
constexpr auto notUtf8 = "a text is not encoded in UTF-8";
constexpr auto halfPair = "a text holds half of a surrogate pair";
constexpr auto tooLarge = "a number is too large";
constexpr auto tooDeep = "lists and records are nested too deeply";

QList<JsonText> acceptedNumbers()
{
    return {
        {"zero", "0", "0"},
        {"one", "1", "1"},
        {"negative", "-17", "-17"},
        {"many digits", "1234567890", "1234567890"},
        {"fraction", "0.5", "0.5"},
        {"negative fraction", "-0.5", "-0.5"},
        {"fraction of zeros", "1.000", "1"},
        {"zero with a fraction", "0.0", "0"},
        {"zeros behind the point", "0.00001", "1e-05"},
        {"exponent", "1e2", "100"},
        {"exponent with capital letter", "1E2", "100"},
        {"exponent with plus", "1e+2", "100"},
        {"exponent with minus", "25e-2", "0.25"},
        {"exponent zero", "5e0", "5"},
        {"exponent minus zero", "5e-0", "5"},
        {"exponent with leading zeros", "1e0002", "100"},
        {"zero with an exponent", "0e1", "0"},
        {"everything", "-12.50E+01", "-125"},
        {"large exponent", "1e308", "1e+308"},
        {"largest", "1.7976931348623157e308", "1.7976931348623157e+308"},
        {"smallest normal", "2.2250738585072014e-308", "2.2250738585072014e-308"},
        {"smallest", "5e-324", "5e-324"},
        {"32 bits", "4294967295", "4294967295"},
        {"more than 32 bits", "-4294967297", "-4294967297"},
        {"number in a list", "[3.25]", "[3.25]"},
        {"number before a blank", "[1 ]", "[1]"},
    };
}

QList<JsonText> acceptedStrings()
{
    return {
        {"empty text", R"("")", R"("")"},
        {"one letter", R"("a")", R"("a")"},
        {"blank", R"(" ")", R"(" ")"},
        {"brackets and marks", R"("[{,:}]'#/*")", R"("[{,:}]'#/*")"},
        {"slash", R"("a/b")", R"("a/b")"},
        {"escaped slash", R"("a\/b")", R"("a/b")"},
        {"escaped quotation mark", R"("\"")", R"(""")"},
        {"escaped backslash", R"("\\")", R"("\")"},
        {"escaped backslash before u", R"("\\u0041")", R"("\u0041")"},
        {"escapes with a letter", R"("\b\f\n\r\t")", R"("<8><C><A><D><9>")"},
        {"escape by number", R"("\u0041")", R"("A")"},
        {"escape in small letters", R"("\u00e9")", R"("<E9>")"},
        {"escape in capital letters", R"("\u00E9")", R"("<E9>")"},
        {"escaped U+0000", R"("a\u0000b")", R"("a<0>b")"},
        {"escaped control character", R"("\u001F")", R"("<1F>")"},
        {"escaped quotation mark by number", R"("\u0022\u005C")", R"(""\")"},
        {"escaped pair", R"("\uD83D\uDE80")", R"("<1F680>")"},
        {"escaped pair in small letters", R"("\ud83d\ude80")", R"("<1F680>")"},
        {"last escaped pair", R"("\uDBFF\uDFFF")", R"("<10FFFF>")"},
        {"digits after an escape", R"("\u00412")", R"("A2")"},
        {"delete", "\"\x7F\"", R"("<7F>")"},
        {"two bytes", "\"\xC3\xA9\"", R"("<E9>")"},
        {"three bytes", "\"\xE2\x82\xAC\"", R"("<20AC>")"},
        {"four bytes", "\"\xF0\x9F\x9A\x80\"", R"("<1F680>")"},
        {"first of two bytes", "\"\xC2\x80\"", R"("<80>")"},
        {"first of three bytes", "\"\xE0\xA0\x80\"", R"("<800>")"},
        {"before the surrogates", "\"\xED\x9F\xBF\"", R"("<D7FF>")"},
        {"after the surrogates", "\"\xEE\x80\x80\"", R"("<E000>")"},
        {"first of four bytes", "\"\xF0\x90\x80\x80\"", R"("<10000>")"},
        {"last of Unicode", "\"\xF4\x8F\xBF\xBF\"", R"("<10FFFF>")"},
        {"line separator", "\"\xE2\x80\xA8\"", R"("<2028>")"},
        {"combining mark", "\"e\xCC\x81\"", R"("e<301>")"},
        {"words that are values elsewhere", R"(["null","true","1"])", R"(["null","true","1"])"},
    };
}

QList<JsonText> acceptedStructures()
{
    return {
        {"empty list", "[]", "[]"},
        {"empty record", "{}", "{}"},
        {"null", "null", "null"},
        {"true", "true", "true"},
        {"false", "false", "false"},
        {"list of words", "[null,true,false]", "[null,true,false]"},
        {"list of lists", "[[],[[]],[1,[2,3]]]", "[[],[[]],[1,[2,3]]]"},
        {"list of records", R"([{},{"a":1}])", R"([{},{"a":1}])"},
        {"record of all", R"({"a":[],"b":{},"c":"x","d":1,"e":null,"f":true})",
         R"({"a":[],"b":{},"c":"x","d":1,"e":null,"f":true})"},
        {"record in a record", R"({"a":{"b":{"c":[{}]}}})", R"({"a":{"b":{"c":[{}]}}})"},
        {"key with a blank", R"({"a b":1})", R"({"a b":1})"},
        {"key with escapes", R"({"\u0061\"\/":1})", R"({"a"/":1})"},
        {"key with escaped pair", R"({"\ud83d\ude80":1})", R"({"<1F680>":1})"},
        {"key in UTF-8", "{\"\xC3\xA9\":1}", R"({"<E9>":1})"},
        {"blanks everywhere", " \t\r\n[ \t\r\n1 \t\r\n, \t\r\n2 \t\r\n] \t\r\n", "[1,2]"},
        {"blanks in a record", " { \"a\" : 1 , \"b\"\n:\n2 } ", R"({"a":1,"b":2})"},
        {"blanks in empty ones", "[ [ ] , { \n } ]", "[[],{}]"},
        {"line end at the end", "[]\n", "[]"},
        {"elements of many types", R"([0,"",[],{},null])", R"([0,"",[],{},null])"},
        {"64 levels", QByteArray("[").repeated(64) + QByteArray("]").repeated(64),
         QByteArray("[").repeated(64) + QByteArray("]").repeated(64)},
        {"many levels one after the other", "[" + QByteArray("[[]],").repeated(200) + "1]",
         "[" + QByteArray("[[]],").repeated(200) + "1]"},
    };
}

QList<JsonText> refusedNumbers()
{
    return {
        {"plus", "+1", valueWrong},
        {"leading zero", "01", moreFollows},
        {"leading zero in a list", "[01]", commaMissing},
        {"two zeros", "-00", moreFollows},
        {"minus alone", "-", cutShort},
        {"minus alone in a list", "[-]", valueWrong},
        {"two minuses", "--1", valueWrong},
        {"minus and a blank", "- 1", valueWrong},
        {"minus and a letter", "[-a]", valueWrong},
        {"point at the end", "[1.]", digitsMissing},
        {"point at the start", "[.5]", valueWrong},
        {"minus before the point", "[-.5]", valueWrong},
        {"point before the exponent", "[1.e5]", digitsMissing},
        {"two points", "[1.5.5]", commaMissing},
        {"exponent without digits", "[1e]", digitsMissing},
        {"exponent with plus alone", "[1e+]", digitsMissing},
        {"exponent with minus alone", "[1E-]", digitsMissing},
        {"exponent with two signs", "[1e+-2]", digitsMissing},
        {"two exponents", "[1e5e5]", commaMissing},
        {"fraction in the exponent", "[1e5.5]", commaMissing},
        {"blank before the exponent", "[1 e5]", commaMissing},
        {"exponent alone", "[e5]", valueWrong},
        {"hexadecimal", "[0x10]", commaMissing},
        {"binary", "[0b1]", commaMissing},
        {"underscore", "[1_000]", commaMissing},
        {"comma in a number", "1,5", moreFollows},
        {"suffix", "[1f]", commaMissing},
        {"letter behind", "[1a]", commaMissing},
        {"sum", "[1+1]", commaMissing},
        {"not a number", "[NaN]", valueWrong},
        {"not a number in small letters", "[nan]", valueWrong},
        {"infinity", "[Infinity]", valueWrong},
        {"negative infinity", "[-Infinity]", valueWrong},
        {"infinity, short", "[inf]", valueWrong},
        {"full-width digit", "[\xEF\xBC\x91]", valueWrong},
        {"Arabic digit", "[\xD9\xA1]", valueWrong},
        {"minus sign of Unicode", "[\xE2\x88\x92\x31]", valueWrong},
    };
}

QList<JsonText> refusedStrings()
{
    return {
        {"not closed", R"("abc)", cutShort},
        {"opened alone", R"(")", cutShort},
        {"closing mark escaped", R"("abc\")", cutShort},
        {"cut in an escape", R"("\)", cutShort},
        {"cut in an escape by number", R"("\u00)", cutShort},
        {"single quotation marks", "['a']", valueWrong},
        {"typographic quotation marks",
         "[\xE2\x80\x9C"
         "a\xE2\x80\x9D]",
         valueWrong},
        {"no quotation marks", "[a]", valueWrong},
        {"opening mark missing", "[a\"]", valueWrong},
        {"two texts in one", R"(["a""b"])", commaMissing},
        {"line break", "[\"a\nb\"]", escapeWrong},
        {"carriage return", "[\"a\rb\"]", escapeWrong},
        {"tabulator", "[\"a\tb\"]", escapeWrong},
        {"U+0000", bytes("[\"a\0b\"]"), escapeWrong},
        {"U+0001", "[\"\x01\"]", escapeWrong},
        {"U+001F", "[\"\x1F\"]", escapeWrong},
        {"unknown escape", R"(["\a"])", escapeWrong},
        {"escaped single quotation mark", R"(["\'"])", escapeWrong},
        {"escaped digit", R"(["\0"])", escapeWrong},
        {"hexadecimal escape", R"(["\x41"])", escapeWrong},
        {"escaped line break", "[\"a\\\nb\"]", escapeWrong},
        {"escape with capital letter", R"(["\U0041"])", escapeWrong},
        {"escape without digits", R"(["\u"])", escapeWrong},
        {"escape with one digit", R"(["\u1"])", escapeWrong},
        {"escape with three digits", R"(["\u123"])", escapeWrong},
        {"escape with another letter", R"(["\u00g0"])", escapeWrong},
        {"escape with a sign", R"(["\u+041"])", escapeWrong},
        {"escape in brackets", R"(["\u{41}"])", escapeWrong},
        {"escaped letter of UTF-8", "[\"\\\xC3\xA9\"]", escapeWrong},
        {"half an escaped pair", R"(["\uD83D\u"])", escapeWrong},
        {"escape in a key", R"({"\x":1})", escapeWrong},
        {"line break in a key", "{\"\n\":1}", escapeWrong},
        {"continuation byte alone", "[\"\x80\"]", notUtf8},
        {"last continuation byte alone", "[\"\xBF\"]", notUtf8},
        {"two bytes cut", "[\"\xC3\"]", notUtf8},
        {"two bytes, then a letter", "[\"\xC3(\"]", notUtf8},
        {"three bytes cut", "[\"\xE2\x82\"]", notUtf8},
        {"four bytes cut", "[\"\xF0\x9F\x9A\"]", notUtf8},
        {"four bytes, cut by an escape", "[\"\xF0\x9F\\u0080\"]", notUtf8},
        {"slash in two bytes", "[\"\xC0\xAF\"]", notUtf8},
        {"U+007F in two bytes", "[\"\xC1\xBF\"]", notUtf8},
        {"slash in three bytes", "[\"\xE0\x80\xAF\"]", notUtf8},
        {"U+07FF in three bytes", "[\"\xE0\x9F\xBF\"]", notUtf8},
        {"slash in four bytes", "[\"\xF0\x80\x80\xAF\"]", notUtf8},
        {"U+FFFF in four bytes", "[\"\xF0\x8F\xBF\xBF\"]", notUtf8},
        {"U+0000 in two bytes", "[\"\xC0\x80\"]", notUtf8},
        {"high surrogate", "[\"\xED\xA0\x80\"]", notUtf8},
        {"low surrogate", "[\"\xED\xBF\xBF\"]", notUtf8},
        {"pair of surrogates", "[\"\xED\xA0\xBD\xED\xBA\x80\"]", notUtf8},
        {"beyond Unicode", "[\"\xF4\x90\x80\x80\"]", notUtf8},
        {"far beyond Unicode", "[\"\xF5\x80\x80\x80\"]", notUtf8},
        {"five bytes", "[\"\xF8\x88\x80\x80\x80\"]", notUtf8},
        {"byte FE", "[\"\xFE\"]", notUtf8},
        {"byte FF", "[\"\xFF\"]", notUtf8},
        {"Latin-1", "[\"caf\xE9\"]", notUtf8},
        {"Latin-1 in a key", "{\"caf\xE9\":1}", notUtf8},
        {"Latin-1 among good ones", "[\"\xC3\xA9\",\"\xE9\",\"\xC3\xA9\"]", notUtf8},
    };
}

QList<JsonText> refusedStructures()
{
    return {
        {"nothing", "", empty},
        {"blanks", " \t\r\n", empty},
        {"opening bracket", "[", cutShort},
        {"opening brace", "{", cutShort},
        {"closing bracket", "]", valueWrong},
        {"closing brace", "}", valueWrong},
        {"list not closed", "[1", cutShort},
        {"list not closed after a comma", "[1,", cutShort},
        {"inner list not closed", "[[1]", cutShort},
        {"record not closed", R"({"a":1)", cutShort},
        {"record cut after a key", R"({"a")", cutShort},
        {"record cut after a colon", R"({"a":)", cutShort},
        {"record cut after a comma", R"({"a":1,)", cutShort},
        {"comma at the end of a list", "[1,]", valueWrong},
        {"comma at the start of a list", "[,1]", valueWrong},
        {"two commas in a list", "[1,,2]", valueWrong},
        {"comma alone in a list", "[,]", valueWrong},
        {"no comma in a list", "[1 2]", commaMissing},
        {"no comma between lists", "[[][]]", commaMissing},
        {"semicolon in a list", "[1;2]", commaMissing},
        {"colon in a list", R"(["a":1])", commaMissing},
        {"list closed by a brace", "[1}", commaMissing},
        {"empty list closed by a brace", "[}", valueWrong},
        {"record closed by a bracket", R"({"a":1])", commaMissing},
        {"empty record closed by a bracket", "{]", nameMissing},
        {"comma at the end of a record", R"({"a":1,})", nameMissing},
        {"comma at the start of a record", R"({,"a":1})", nameMissing},
        {"two commas in a record", R"({"a":1,,"b":2})", nameMissing},
        {"comma alone in a record", "{,}", nameMissing},
        {"no comma in a record", R"({"a":1 "b":2})", commaMissing},
        {"semicolon in a record", R"({"a":1;"b":2})", commaMissing},
        {"key without a value", R"({"a"})", colonMissing},
        {"key and a comma", R"({"a","b":1})", colonMissing},
        {"colon without a value", R"({"a":})", valueWrong},
        {"no colon", R"({"a" 1})", colonMissing},
        {"equals sign", R"({"a"=1})", colonMissing},
        {"two colons", R"({"a"::1})", valueWrong},
        {"two values", R"({"a":1:2})", commaMissing},
        {"key without quotation marks", "{a:1}", nameMissing},
        {"key in single quotation marks", "{'a':1}", nameMissing},
        {"number as a key", "{1:1}", nameMissing},
        {"null as a key", "{null:1}", nameMissing},
        {"list as a key", "{[]:1}", nameMissing},
        {"value without a key", "{1}", nameMissing},
        {"bracket too many", "[]]", moreFollows},
        {"brace too many", "{}}", moreFollows},
        {"two lists", "[][]", moreFollows},
        {"two numbers", "1 2", moreFollows},
        {"two lines", "{}\n{}\n", moreFollows},
        {"comma behind", "[],", moreFollows},
        {"letter behind the end", "[]x", moreFollows},
        {"comma alone", ",", valueWrong},
        {"colon alone", ":", valueWrong},
        {"record without braces", R"("a":1)", moreFollows},
        {"word cut", "[nul]", valueWrong},
        {"word cut at the end", "tru", cutShort},
        {"word with more", "[nulll]", commaMissing},
        {"word in capitals", "[NULL]", valueWrong},
        {"word with a capital", "[True]", valueWrong},
        {"other word", "[undefined]", valueWrong},
        {"two words", "[true false]", commaMissing},
        {"comment to the line's end", "[1, // one\n2]", valueWrong},
        {"comment in the middle", "[1 /* one */]", commaMissing},
        {"comment at the start", "/**/[]", valueWrong},
        {"comment at the end", "[]//", moreFollows},
        {"comment with a hash", "# list\n[]", valueWrong},
        {"parentheses", "(1)", valueWrong},
        {"backslash", "[\\u0031]", valueWrong},
        {"form feed", "[\f1]", valueWrong},
        {"vertical tabulator", "[1\v]", commaMissing},
        {"no-break space",
         "[\xC2\xA0"
         "1]",
         valueWrong},
        {"line separator as a blank", "[1\xE2\x80\xA8]", commaMissing},
        {"U+0000 as a blank", bytes("[\0001]"), valueWrong},
        {"U+0000 behind a value", bytes("[1\0]"), commaMissing},
        {"U+0000 behind the end", bytes("[]\0"), moreFollows},
        {"U+0000 alone", bytes("\0"), valueWrong},
        {"U+0000 in a record", bytes("{\0}"), nameMissing},
        {"byte-order mark in the middle",
         "[\xEF\xBB\xBF"
         "1]",
         valueWrong},
        {"byte-order mark at the end", "[]\xEF\xBB\xBF", moreFollows},
        {"byte-order mark after a blank", " \xEF\xBB\xBF[]", valueWrong},
        {"two byte-order marks", "\xEF\xBB\xBF\xEF\xBB\xBF[]", valueWrong},
        {"byte-order mark cut", "\xEF\xBB", valueWrong},
        {"byte-order mark alone", "\xEF\xBB\xBF", empty},
        {"UTF-16, little end first", bytes("[\0]\0"), valueWrong},
        {"UTF-16, big end first", bytes("\0[\0]"), valueWrong},
        {"UTF-16 with mark, little end first", bytes("\xFF\xFE[\0]\0"), valueWrong},
        {"UTF-16 with mark, big end first", bytes("\xFE\xFF\0[\0]"), valueWrong},
        {"UTF-32, little end first", bytes("[\0\0\0]\0\0\0"), valueWrong},
        {"UTF-32 with mark, big end first", bytes("\0\0\xFE\xFF\0\0\0["), valueWrong},
        {"property list", "<?xml version=\"1.0\"?><plist/>", valueWrong},
        {"million brackets", QByteArray("[").repeated(1000000), tooDeep},
    };
}

} // namespace

QList<JsonText> acceptedJsonTexts()
{
    return acceptedNumbers() + acceptedStrings() + acceptedStructures();
}

QList<JsonText> refusedJsonTexts()
{
    return refusedNumbers() + refusedStrings() + refusedStructures();
}

QList<JsonText> jsonTextsAcceptedByChoice()
{
    const QByteArray zeros(400, '0');
    return {
        {"a byte-order mark is passed over", "\xEF\xBB\xBF[1]", "[1]"},
        {"the root may be a number", "5", "5"},
        {"the root may be a text", R"("a")", R"("a")"},
        {"the root may be null", "null", "null"},
        {"doubled keys all come, in order", R"({"a":1,"b":2,"a":3})", R"({"a":1,"b":2,"a":3})"},
        {"doubled keys all come, escaped or not", R"({"a":1,"\u0061":1})", R"({"a":1,"a":1})"},
        {"keys keep their order", R"({"b":1,"a":2})", R"({"b":1,"a":2})"},
        {"keys that differ in composition differ", "{\"\xC3\xA9\":1,\"e\xCC\x81\":2}",
         R"({"<E9>":1,"e<301>":2})"},
        {"a key may be empty", R"({"":1})", R"({"":1})"},
        {"a key may hold U+0000", R"({"a\u0000":1})", R"({"a<0>":1})"},
        {"a key may be long", "{\"" + QByteArray("k").repeated(100000) + "\":1}",
         "{\"" + QByteArray("k").repeated(100000) + "\":1}"},
        {"minus zero stays", "-0", "-0"},
        {"minus zero stays with a fraction", "-0.0e3", "-0"},
        {"2^53 + 1 becomes the nearest double", "9007199254740993", "9007199254740992"},
        {"2^63 becomes the nearest double", "9223372036854775808", "9223372036854775808"},
        {"2^64 becomes the nearest double", "18446744073709551616", "18446744073709551616"},
        {"more than -2^63 becomes the nearest double", "-9223372036854775809",
         "-9223372036854775808"},
        {"300 digits become the nearest double", "1" + zeros.left(300), "1e+300"},
        {"many digits are rounded to the nearest",
         "0.1000000000000000055511151231257827021181583404541015625", "0.1"},
        {"half of the last place is rounded to even", "9007199254740993.0", "9007199254740992"},
        {"more than half is rounded up", "9007199254740993.00000000000000000000000000000000001",
         "9007199254740994"},
        {"400 digits behind the point", "0.1" + zeros, "0.1"},
        {"400 zeros before the point of e-400", "0." + zeros + "1e401", "1"},
        {"just below too large becomes the largest", "1.7976931348623158e308",
         "1.7976931348623157e+308"},
        {"too small becomes zero", "1e-400", "0"},
        {"too small and negative becomes zero", "-1e-400", "0"},
        {"half of the smallest becomes zero", "2e-324", "0"},
        {"more than half of the smallest becomes it", "3e-324", "5e-324"},
        {"far too small becomes zero", "1e-99999999999999999999", "0"},
        {"exponent at the end of 32 bits", "0.00000000000000000001e-2147483639", "0"},
        {"exponent beyond 32 bits", "1e-2147483649", "0"},
        {"no character of Unicode's last plane", "\"\xF4\x8F\xBF\xBE\"", R"("<10FFFE>")"},
        {"no characters, as they are", "\"\xEF\xBF\xBE\xEF\xBF\xBF\xEF\xB7\x90\"",
         R"("<FFFE><FFFF><FDD0>")"},
        {"no characters, escaped", R"("\uFFFE\uFFFF\uFDD0")", R"("<FFFE><FFFF><FDD0>")"},
        {"byte-order mark in a text stays",
         "\"\xEF\xBB\xBF\xEF\xBB\xBF"
         "a\"",
         R"("<FEFF><FEFF>a")"},
        {"byte-order mark in a text stays, escaped", R"("\uFEFFa")", R"("<FEFF>a")"},
        {"replacement character", R"("\uFFFD")", R"("<FFFD>")"},
        {"a text may be long", "\"" + QByteArray("a").repeated(100000) + "\"",
         "\"" + QByteArray("a").repeated(100000) + "\""},
        {"64 levels of records",
         QByteArray("{\"a\":").repeated(64) + "1" + QByteArray("}").repeated(64),
         QByteArray("{\"a\":").repeated(64) + "1" + QByteArray("}").repeated(64)},
    };
}

QList<JsonText> jsonTextsRefusedByChoice()
{
    const QByteArray zeros(400, '0');
    return {
        {"too large", "[1e400]", tooLarge},
        {"too large and negative", "[-1e400]", tooLarge},
        {"the first that is too large", "[1.7976931348623159e308]", tooLarge},
        {"too large without an exponent", "[1" + zeros + "]", tooLarge},
        {"too large with a small exponent", "[17976931348623159e292]", tooLarge},
        {"far too large", "[1e99999999999999999999]", tooLarge},
        {"zero with an exponent that is too large", "[0e400]", tooLarge},
        {"high surrogate alone, escaped", R"(["\uD83D"])", halfPair},
        {"high surrogate before a letter, escaped", R"(["\uD83Da"])", halfPair},
        {"high surrogate before an escape", R"(["\uD83D\n"])", halfPair},
        {"two high surrogates, escaped", R"(["\uD83D\uD83D"])", halfPair},
        {"high surrogate before another letter, escaped", R"(["\uD83D\u0041"])", halfPair},
        {"low surrogate alone, escaped", R"(["\uDE80"])", notUtf8},
        {"low surrogate at the end of a text, escaped", R"(["abc\uDFFF"])", notUtf8},
        {"surrogates in the wrong order, escaped", R"(["\uDE80\uD83D"])", halfPair},
        {"high surrogate escaped, low one not", "[\"\\uD83D\xED\xBA\x80\"]", halfPair},
        {"low surrogate in a key, escaped", R"({"\uDE80":1})", notUtf8},
        {"65 lists", QByteArray("[").repeated(65) + QByteArray("]").repeated(65), tooDeep},
        {"65 records", QByteArray("{\"a\":").repeated(65) + "1" + QByteArray("}").repeated(65),
         tooDeep},
        {"65 levels of both",
         QByteArray("[{\"a\":").repeated(33) + "1" + QByteArray("}]").repeated(33), tooDeep},
    };
}

} // namespace tembra

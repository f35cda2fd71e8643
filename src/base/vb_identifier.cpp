// The name rules of Visual Basic (see vb_identifier.h).
#include "base/vb_identifier.h"

#include <algorithm>
#include <array>

#include "base/utf8.h"

namespace arbolet {
namespace {

// Statement, marker and operator keywords, type names, literals and the built-in names the
// language reserves, lower-cased and sorted for binary search.
constexpr auto kReservedWords = std::to_array<std::string_view>({
    "abs",      "addressof", "and",        "any",      "array",   "as",         "attribute",
    "boolean",  "byref",     "byte",       "byval",    "call",    "case",       "cbool",
    "cbyte",    "ccur",      "cdate",      "cdbl",     "cdec",    "cdecl",      "cint",
    "circle",   "clng",      "close",      "const",    "csng",    "cstr",       "currency",
    "cvar",     "cverr",     "date",       "debug",    "decimal", "declare",    "defbool",
    "defbyte",  "defcur",    "defdate",    "defdbl",   "defdec",  "defint",     "deflng",
    "defobj",   "defsng",    "defstr",     "defvar",   "dim",     "do",         "doevents",
    "double",   "each",      "else",       "elseif",   "empty",   "end",        "endif",
    "enum",     "eqv",       "erase",      "event",    "exit",    "false",      "fix",
    "for",      "friend",    "function",   "get",      "global",  "gosub",      "goto",
    "if",       "imp",       "implements", "in",       "input",   "inputb",     "int",
    "integer",  "is",        "lbound",     "len",      "lenb",    "let",        "like",
    "lock",     "long",      "loop",       "lset",     "me",      "mod",        "new",
    "next",     "not",       "nothing",    "null",     "on",      "open",       "option",
    "optional", "or",        "paramarray", "preserve", "print",   "private",    "pset",
    "public",   "put",       "raiseevent", "redim",    "rem",     "resume",     "return",
    "rset",     "scale",     "seek",       "select",   "set",     "sgn",        "shared",
    "single",   "spc",       "static",     "stop",     "string",  "sub",        "tab",
    "then",     "to",        "true",       "type",     "typeof",  "ubound",     "unlock",
    "until",    "variant",   "wend",       "while",    "with",    "withevents", "write",
    "xor",
});

static_assert(std::is_sorted(kReservedWords.begin(), kReservedWords.end()));

bool IsAsciiLetter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

bool IsNameCharacter(char c) {
    return IsAsciiLetter(c) || (c >= '0' && c <= '9') || c == '_';
}

std::string Quoted(std::string_view text) {
    return "'" + std::string(text) + "'";
}

// The whole UTF-8 character that starts at `offset`.
std::string_view CharacterAt(std::string_view text, std::ptrdiff_t offset) {
    auto end = static_cast<std::size_t>(offset) + 1;
    while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
        ++end;
    return text.substr(static_cast<std::size_t>(offset), end - static_cast<std::size_t>(offset));
}

std::string Describe(std::string_view character) {
    if (character == " ") return "a blank";
    if (character.size() == 1 && static_cast<unsigned char>(character[0]) < 32) {
        return "a control character";
    }
    return "the character " + Quoted(character);
}

}  // namespace

bool IsVbReservedWord(std::string_view word) {
    const std::string lower = text::ToLower(word);
    return std::binary_search(kReservedWords.begin(), kReservedWords.end(), lower);
}

std::optional<std::string> InvalidVbNameReason(std::string_view name) {
    if (name.empty()) return "a name cannot be empty";
    if (!IsAsciiLetter(name.front())) {
        return Quoted(name) + " does not begin with a letter";
    }
    const auto bad = std::find_if_not(name.begin(), name.end(), IsNameCharacter);
    if (bad != name.end()) {
        return Quoted(name) + " holds " + Describe(CharacterAt(name, bad - name.begin())) +
               "; a name holds only letters, digits and underscores";
    }
    if (name.size() > kMaxVbNameLength) {
        return Quoted(name) + " is " + std::to_string(name.size()) +
               " characters long; a name has at most " + std::to_string(kMaxVbNameLength);
    }
    if (IsVbReservedWord(name)) return Quoted(name) + " is a reserved word of Visual Basic";
    return std::nullopt;
}

}  // namespace arbolet

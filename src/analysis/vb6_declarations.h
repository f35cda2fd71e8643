// The module-level declarations of VB6 code: constants, variables, user-defined types and their
// members, enums and their members, Declares, events, and the headers of procedures. Read with
// the same statement lexer as the block checker, so that continuations, colons and comments are
// taken as the compiler takes them.
//
// Works on bytes of any ASCII-compatible code page (UTF-8 included). Never fails: text that is
// not a declaration is skipped. Linear in the size of the code.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace arbolet::analysis::vb6 {

enum class DeclarationKind : std::uint8_t {
    Constant,
    Variable,
    Type,
    TypeMember,
    Enum,
    EnumMember,
    Declare,
    Event,
    Sub,
    Function,
    PropertyGet,
    PropertyLet,
    PropertySet,
};

struct Declaration {
    DeclarationKind kind = DeclarationKind::Variable;
    std::string name;          // without the brackets of an escaped enum member name
    std::int32_t line = 0;     // physical line of the name, numbered from the first line given
    std::int32_t column = 0;   // 0-based byte offset of the name in that physical line
    std::int32_t length = 0;   // of the name, in bytes
    std::int32_t endLine = 0;  // last physical line of the declaring statement
    bool isPublic = false;     // visible to the other modules of the project
    std::int32_t parent = -1;  // Type/Enum members: index of their Type or Enum
    std::string detail;        // what follows the name: "As Long", "(ByVal x As Long)", "= 5"
};

bool IsProcedureKind(DeclarationKind kind);

// The declarations in source order; members follow their Type or Enum. Procedures appear with
// their headers only; nothing inside a procedure is reported.
std::vector<Declaration> ScanDeclarations(std::string_view code, std::int32_t firstLine = 1);

}  // namespace arbolet::analysis::vb6

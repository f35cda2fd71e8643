// kvRegistry: a cursor over the Windows registry. The caller selects a hive (ClassKey), a key
// path (SectionKey), a value name (ValueKey), the type that writes use (ValueType) and a
// fall-back for reads (Default), then calls an operation that acts on that selection.
//
// Every key path, value name and text crosses the API through the 8-bit ("A") registry
// functions, in the system's ANSI code page. Failures are raised as VbError with the source
// "<module name>.cRegistry"; reads never raise for a missing key or value.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "windows/registry/reg_value.h"

namespace arbolet::windows {

// The predefined hives, as the signed 32-bit handle values that ClassKey stores.
namespace hive {
inline constexpr std::int32_t kClassesRoot = static_cast<std::int32_t>(0x80000000u);
inline constexpr std::int32_t kCurrentUser = static_cast<std::int32_t>(0x80000001u);
inline constexpr std::int32_t kLocalMachine = static_cast<std::int32_t>(0x80000002u);
inline constexpr std::int32_t kUsers = static_cast<std::int32_t>(0x80000003u);
}  // namespace hive

class kvRegistry {
  public:
    // The numbers of the errors the class raises.
    static constexpr std::int32_t kErrRegistry = 26001;
    static constexpr std::int32_t kErrWriteStatus = static_cast<std::int32_t>(0x800469A9u);
    static constexpr std::int32_t kErrInvalidParameterList = static_cast<std::int32_t>(0x800469ACu);
    static constexpr std::int32_t kErrClassNotDefined = static_cast<std::int32_t>(0x800469ADu);

    bool KeyExists() const;
    // Creates the section (or opens it when it exists).
    bool CreateKey() const;
    // Deletes the section; a key with sub-keys is refused, never deleted recursively.
    bool DeleteKey() const;
    bool DeleteValue() const;
    bool ValueExists() const;

    // Reads the selected value by its stored type; Default when it cannot be read. A successful
    // read sets ValueType to the stored type.
    RegValue Value();
    // Writes by ValueType (texts choose REG_SZ or REG_EXPAND_SZ themselves), creating the
    // section when needed.
    void Value(const RegValue& vValue);

    // The names of the section's values, in an array whose first index is 1. Always true: a
    // missing section lists nothing.
    bool EnumerateValues(VbArray<std::string>& sKeyNames, std::int32_t& iKeyCount) const;
    // The names of the section's sub-keys, from index 1. False only when an error cut the
    // listing short; the names found before it stay listed.
    bool EnumerateSections(VbArray<std::string>& sSect, std::int32_t& iSectCount) const;

    // Registers a file extension for a program, under HKEY_CLASSES_ROOT and again under
    // HKEY_LOCAL_MACHINE\SOFTWARE\Classes.
    void CreateEXEAssociation(const std::string& sExePath, const std::string& sClassName,
                              const std::string& sClassDescription, const std::string& sAssociation,
                              std::string sOpenMenuText, bool bSupportPrint,
                              std::string sPrintMenuText, bool bSupportNew,
                              std::string sNewMenuText, bool bSupportInstall,
                              std::string sInstallMenuText, std::int32_t lDefaultIconIndex);
    // Adds verbs to a registered class: vItems holds verb name, menu text and command line for
    // each verb. Reports nothing to the caller, whatever happens inside.
    void CreateAdditionalEXEAssociations(const std::string& sClassName,
                                         const std::vector<RegValue>& vItems) noexcept;

    std::int32_t ValueType() const noexcept { return valueType_; }
    void ValueType(std::int32_t eValueType) noexcept { valueType_ = eValueType; }
    std::int32_t ClassKey() const noexcept { return hive_; }
    void ClassKey(std::int32_t eKey) noexcept { hive_ = eKey; }
    const std::string& SectionKey() const noexcept { return section_; }
    void SectionKey(std::string sSectionKey) noexcept { section_ = std::move(sSectionKey); }
    const std::string& ValueKey() const noexcept { return valueName_; }
    void ValueKey(std::string sValueKey) noexcept { valueName_ = std::move(sValueKey); }
    RegValue Default() const { return default_; }
    void Default(RegValue vDefault) noexcept { default_ = std::move(vDefault); }

  private:
    [[noreturn]] static void Raise(std::int32_t number, const std::string& description);
    std::string HiveText() const { return std::to_string(hive_); }
    std::string SetValueFailureText() const;

    // Writes a text under HKEY_CLASSES_ROOT and again below HKEY_LOCAL_MACHINE\SOFTWARE\Classes,
    // leaving ClassKey at HKEY_LOCAL_MACHINE.
    void WriteClassesValue(const std::string& sValue);
    void WriteVerb(const std::string& sClassName, const std::string& sVerb,
                   const std::string& sMenuText, const std::string& sCommand);

    std::int32_t hive_ = 0;
    std::string section_;
    std::string valueName_;
    RegValue lastWritten_;
    RegValue default_;
    std::int32_t valueType_ = 0;
};

}  // namespace arbolet::windows

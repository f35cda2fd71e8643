# The release identity, defined once: the version (from project()) and the COM identities of the
# add-in. It becomes a generated header for the code, a Windows version resource for each
# executable and DLL (arbolet_version_resource), and the variables the installer is built with.
include_guard(GLOBAL)

set(ARBOLET_VERSION ${PROJECT_VERSION})
set(ARBOLET_PRODUCT_NAME "Arbolet")
set(ARBOLET_COMPANY_NAME "Arbolet")
set(ARBOLET_COPYRIGHT "Copyright (C) 2026 the Arbolet developers")

# The add-in's COM classes. The IDE finds the connection class by its ProgID under the Addins
# key and creates the tool window's control by its ProgID, so these never change between
# releases: an upgrade must replace the registration in place.
set(ARBOLET_CONNECT_PROGID "Quorlin.dVisualBasic")
set(ARBOLET_CONNECT_CLSID "9454F5F5-E519-4FC4-B69B-20668839458E")
set(ARBOLET_DOCUMENT_PROGID "Quorlin.docAddIn")
set(ARBOLET_DOCUMENT_CLSID "9B5C36C4-F608-4421-9337-3ABC6F58BC6C")

set(ARBOLET_VERSION_TEMPLATE_DIR ${CMAKE_CURRENT_LIST_DIR}/templates)
# The installer's upgrade codes: a newer package finds and replaces an older one by them. The
# x86_64 package is a separate product, used for testing under a 64-bit-only Wine.
set(ARBOLET_UPGRADE_CODE_X86 "6B76C50E-FCFA-4A9F-97EB-8A104289B4FC")
set(ARBOLET_UPGRADE_CODE_X64 "FD8778A7-D52E-410F-8DE2-BB626837680F")

set(ARBOLET_GENERATED_INCLUDE ${CMAKE_BINARY_DIR}/generated)
configure_file(${ARBOLET_VERSION_TEMPLATE_DIR}/version.h.in
               ${ARBOLET_GENERATED_INCLUDE}/arbolet/version.h @ONLY)
configure_file(${ARBOLET_VERSION_TEMPLATE_DIR}/com_identity.h.in
               ${ARBOLET_GENERATED_INCLUDE}/arbolet/com_identity.h @ONLY)

# `#include "arbolet/version.h"` and `#include "arbolet/com_identity.h"`.
add_library(arbolet_identity INTERFACE)
target_include_directories(arbolet_identity INTERFACE ${ARBOLET_GENERATED_INCLUDE})

if(WIN32)
    enable_language(RC)
endif()

# Gives a Windows executable or DLL a version resource (file and product version, description,
# file name), so that Explorer's properties and the installer show which release it is. Does
# nothing outside Windows.
#   arbolet_version_resource(TARGET DESCRIPTION "Arbolet command-line tool")
function(arbolet_version_resource target)
    cmake_parse_arguments(V "" "DESCRIPTION" "" ${ARGN})
    if(NOT WIN32)
        return()
    endif()
    get_target_property(type ${target} TYPE)
    if(type STREQUAL "SHARED_LIBRARY" OR type STREQUAL "MODULE_LIBRARY")
        set(ARBOLET_RC_FILETYPE "0x2L")  # VFT_DLL
    else()
        set(ARBOLET_RC_FILETYPE "0x1L")  # VFT_APP
    endif()
    string(REPLACE "." "," ARBOLET_RC_VERSION_COMMAS "${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}.${PROJECT_VERSION_PATCH}.0")
    set(ARBOLET_RC_DESCRIPTION "${V_DESCRIPTION}")
    set(intermediate ${CMAKE_CURRENT_BINARY_DIR}/${target}_version.rc.in)
    configure_file(${ARBOLET_VERSION_TEMPLATE_DIR}/version.rc.in ${intermediate} @ONLY)
    # The file name is known only at generation time.
    file(GENERATE OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/${target}_version.rc INPUT ${intermediate})
    target_sources(${target} PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/${target}_version.rc)
endfunction()

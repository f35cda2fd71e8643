// Errors across the COM boundary, both ways. Outwards, a VbError or any C++ exception becomes an
// HRESULT with error info (SetErrorInfo), as VB objects report them; no exception leaves a COM
// method. Inwards, a failed call on the IDE's objects becomes the VbError the explorer expects.
#pragma once

#include <windows.h>

#include <oaidl.h>

#include <cstdint>
#include <exception>
#include <new>
#include <string>
#include <string_view>

#include "base/vb_error.h"

namespace arbolet::windows::com {

// VB's mapping of an error number to an HRESULT (0x800A0000 + number); numbers that already
// are HRESULTs are kept.
HRESULT HResultFromVbNumber(std::int32_t number) noexcept;
// The VB error number an HRESULT stands for: the code of FACILITY_CONTROL results, the VB
// numbers of the common dispatch failures, and the HRESULT itself otherwise.
std::int32_t VbNumberFromHResult(HRESULT hr) noexcept;

// Sets the thread's error info and answers `hr`.
HRESULT ReportError(HRESULT hr, std::string_view source, std::string_view description) noexcept;
HRESULT ReportVbError(const VbError& error) noexcept;

// The VbError for a failed call: the number from the HRESULT (or the EXCEPINFO of
// DISP_E_EXCEPTION), the description from the EXCEPINFO or the thread's error info.
VbError VbErrorFromCom(HRESULT hr, const EXCEPINFO* info, std::string_view source);

// Runs the body of a COM method: its HRESULT when it returns, the mapped HRESULT with error
// info when it throws.
template <typename Body>
HRESULT Guarded(const char* source, Body&& body) noexcept {
    try {
        return body();
    } catch (const VbError& error) {
        return ReportVbError(error);
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (const std::exception& error) {
        return ReportError(E_FAIL, source, error.what());
    } catch (...) {
        return ReportError(E_UNEXPECTED, source, "Unexpected failure");
    }
}

// Fills the EXCEPINFO of an IDispatch::Invoke that failed with `hr`, from the thread's error
// info, and answers DISP_E_EXCEPTION; answers `hr` unchanged when there is no EXCEPINFO.
HRESULT ToDispatchException(HRESULT hr, EXCEPINFO* info) noexcept;

}  // namespace arbolet::windows::com

#pragma once
#include <cstdint>
#include <string>

#include "foundation/configuration.h"

namespace tavrine::operations {

inline constexpr const wchar_t* kConnectionFailureText =
    L"Unable to connect to the server. Try later.";
inline constexpr const wchar_t* kPasswordChangedText =
    L"Login failed. Reason: The requested operation has failed due to change of password in the "
    L"website.Please log out and log in with the new password to continue the operation.";

// Puts the two fixed failure texts into the shared last-error texts.
void PreloadFailureTexts();
// The same from the message table (-416 and -403), falling back to the fixed texts.
void PreloadFailureTextsFromMessageTable();

// The localized connection-failure text (trimmed), or the fixed one when it is empty.
std::wstring ConnectionFailureText();
// The same as the shared last-error text.
void PresetConnectionFailureText();

// The codes after which the listing is fetched again.
bool IsListingRetryCode(std::int32_t code);

// The one message box a finished listing shows for its result, if any.
void ShowListingFailure(std::int32_t result, const foundation::Configuration& configuration);

}  // namespace tavrine::operations

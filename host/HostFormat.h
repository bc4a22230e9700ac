#pragma once

#include <cstdarg>

#include "OdString.h"

// printf-style formatting of command-line output with a wide format (%ls a wide text, %s a
// narrow one). A format the C library rejects, or output beyond a mebibyte, gives a short
// note instead of the text.
OdString hostVFormat(const wchar_t* format, va_list args);

#pragma once

// Lets the compiler check a printf-style function's arguments where it can.
#if defined(_MSC_VER)
#define OMBREL_PRINTF_LIKE(formatIndex, firstArgument)
#else
#define OMBREL_PRINTF_LIKE(formatIndex, firstArgument) [[gnu::format(printf, formatIndex, firstArgument)]]
#endif

// How code reports an invariant that does not hold: to the log, and on it goes.
#pragma once

#include "nba/nba.h"

// Reports a broken invariant, with the expression as text, and goes on. Usable as a condition: true
// when it held.
#define VGA_ASSERT(expression)                                                                     \
    ((expression) ? true : (v0_assert(__FILE_NAME__, __LINE__, #expression), false))
// The same where the text of the expression is fixed and differs from the code that tests it.
#define VGA_ASSERT_TEXT(condition, text)                                                           \
    ((condition) ? true : (v0_assert(__FILE_NAME__, __LINE__, text), false))

#ifndef KALVO_CLIENT_QZVEICULOSPADRAO_H
#define KALVO_CLIENT_QZVEICULOSPADRAO_H

// The standard headers of the client headers. They cannot be read where Windows' headers have made macros of min and
// max, as they do for programs that do not define NOMINMAX; afterwards the macros are what they were.

#pragma push_macro("min")
#pragma push_macro("max")
#undef min
#undef max

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <exception>
#include <iterator>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#pragma pop_macro("max")
#pragma pop_macro("min")

#endif

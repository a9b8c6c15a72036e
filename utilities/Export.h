#pragma once

/// Exports a class from the shared library. All other symbols have hidden visibility, and the
/// library's version script keeps them out of its symbol table.
#define ZUBLIPSYNCAPI_EXPORT __attribute__((visibility("default")))

/// Hides a member of an exported class.
#define ZUBLIPSYNCAPI_LOCAL __attribute__((visibility("hidden")))

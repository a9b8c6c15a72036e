#pragma once

/// Marks what callers of the shared library may use. Everything else is compiled with hidden
/// visibility and kept out of the library's symbol table by its version script.
#define ZUBLIPSYNCAPI_EXPORT __attribute__((visibility("default")))

/// Takes a member of an exported class out of the symbol table again.
#define ZUBLIPSYNCAPI_LOCAL __attribute__((visibility("hidden")))

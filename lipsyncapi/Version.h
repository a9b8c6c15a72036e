#pragma once

/// \file
/// The version of the headers, to test at compile time. The build reads it from here.

#define ZUBLIPSYNCAPI_VERSION_MAJOR 1 ///< Grows with incompatible changes.
#define ZUBLIPSYNCAPI_VERSION_MINOR 0 ///< Grows with additions.
#define ZUBLIPSYNCAPI_VERSION_PATCH 0 ///< Grows with fixes.

/// One number that grows with every version, for example 10203 for version 1.2.3. The second and
/// third part stay below 100.
#define ZUBLIPSYNCAPI_VERSION                                                  \
    (ZUBLIPSYNCAPI_VERSION_MAJOR * 10000 + ZUBLIPSYNCAPI_VERSION_MINOR * 100 + \
     ZUBLIPSYNCAPI_VERSION_PATCH)

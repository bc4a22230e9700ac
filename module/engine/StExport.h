#pragma once

// Marks what the module library exports to hosts and plug-in libraries. Everything a plug-in
// calls (engine class factories, st:: helpers) carries ST_EXPORT, so that the library can be
// built with hidden visibility without breaking the plug-ins that link against it.
#define ST_EXPORT __attribute__((visibility("default")))

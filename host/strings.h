// The localized strings: what the host shows of the plug-in.
//
// The table "Vornelix" of the plug-in's bundle is keyed by decimal numbers. Strings that the host
// asks for by kind stand under their kind, but for two that have ids of their own. An external
// function has one entry under its id: prototype, bar, description; the name is the prototype up to
// its parameters. Buffers are UTF-16.
#pragma once

#include <string>

#include "platform/fmwrapper/fmwrapper.h"

// Writes the string and a zero, and returns the string's length. A string that would not leave two
// units to spare is refused whole; then, as for one that is missing, nothing is written: 0.
long Sub_LoadString(unsigned long id, unsigned short* buffer, long capacity, std::string ignored);

// Answers the host's request for a kind of string.
void Do_GetString(unsigned long which, unsigned long language, unsigned long capacity,
                  unsigned short* buffer);

// The pieces of a function's entry. Any other number gives the whole of it.
enum EntryPart : int { kName = 0, kPrototype = 1, kDescription = 2 };

void Do_GetString(unsigned long id, fmx::TextUniquePtr& text, int part);

// The registry: library objects behind the numbers that a calculation can hold.
//
// Every thread has a registry of its own; the numbers, called handles, come from one counter for
// the whole process and are never used twice. A record names the object's type and the book at the
// root of its chain; releasing a book forgets everything that was made from it. The registry never
// owns an object.
//
// Registering under a parent that is not a book rewrites the book's record with the parent's
// fields. From then on the book's handle names the parent: book functions refuse it, and it is the
// calculation's business to save before. Each record therefore remembers its Book* as well, so that
// asking for the library's message never depends on what the book's record names now.
#pragma once

#include <string>
#include <string_view>

#include "platform/fmwrapper/fmwrapper.h"

// The object behind a handle, or null for handle 0. Throws KelPlugin_Exception: 10 for an unknown
// handle, -2 for one of another type.
void* get_object(long handle, std::string type);

// Whether the handle is known and of the type.
bool is_object(long handle, std::string_view type);

// Registers an object and returns its handle. An unknown parent, as 0 for a book, is none.
long set_object(long parent, std::string type, const void* object);

// Forgets a record and those registered under it.
void release_objects(long handle);

// A number in the place of an object, as cell types and error codes are registered.
const void* value_as_object(int value);
int object_as_value(const void* object);

std::string error_message_object_not_found(long handle, std::string type);

// Asks the book of the handle's object for its message and keeps it unless it is "ok". Returns
// whether there is one.
bool set_last_error_message(long handle);

// Store a value, unless the book of the handle's object reports a failure. Return the code of the
// call: 1 with a failure, else 0.
short set_result(long handle, std::wstring value, fmx::Data& result);
short set_result(long handle, std::string value, fmx::Data& result);
short set_result(long handle, double value, fmx::Data& result);

#include "runtime/registry.h"

#include <atomic>
#include <cstdint>
#include <cstring>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/libxl/libxl.h"
#include "runtime/error_state.h"
#include "runtime/results.h"

namespace {

struct Record {
  // The handle of the book at the root; 0 for a book.
  long owner = 0;
  std::string type;
  void* object = nullptr;
  std::vector<long> children;
  // The book itself, whatever the owner's record names meanwhile.
  libxl::Book* book = nullptr;
};

// A call looks up three or four handles, and a calculation may register a million of them.
thread_local std::unordered_map<long, Record> libxl_objects;

std::atomic<long> g_handle_counter = 0;

Record* find_record(long handle) {
  const auto found = libxl_objects.find(handle);
  return found == libxl_objects.end() ? nullptr : &found->second;
}

}  // namespace

void* get_object(long handle, std::string type) {
  if (handle == 0) return nullptr;
  const Record* record = find_record(handle);
  if (!record)
    throw KelPlugin_Exception(codes::kNotFound, error_message_object_not_found(handle, type));
  if (record->type != type)
    throw KelPlugin_Exception(codes::kWrongType, type + " expected. Found " + record->type);
  return record->object;
}

bool is_object(long handle, std::string_view type) {
  const Record* record = find_record(handle);
  return record && record->type == type;
}

long set_object(long parent, std::string type, const void* object) {
  const long handle = g_handle_counter.fetch_add(1, std::memory_order_relaxed) + 1;
  Record record;
  record.object = const_cast<void*>(object);
  if (type == "Book") record.book = static_cast<libxl::Book*>(record.object);
  record.type = std::move(type);

  // Records stay where they are when others are inserted.
  Record* above = find_record(parent);
  if (above) {
    record.owner = above->owner != 0 ? above->owner : parent;
    record.book = above->book;
  }
  const long owner = record.owner;
  // The child is noted first: should memory run out, a number without a record does no harm, but a
  // record that outlives its book would.
  if (above && owner == parent) {
    above->children.push_back(handle);
  } else if (above) {
    Record rewritten = *above;
    rewritten.children.push_back(handle);
    libxl_objects[owner] = std::move(rewritten);
  }
  if (!libxl_objects.try_emplace(handle, std::move(record)).second)
    throw KelPlugin_Exception(codes::kOther, "KelPlugin_Exception");
  return handle;
}

// Allocates nothing: the objects are gone already, so their handles must go as well.
void release_objects(long handle) {
  Record* record = find_record(handle);
  if (!record) return;
  const std::vector<long> children = std::move(record->children);
  for (const long child : children) libxl_objects.erase(child);
  libxl_objects.erase(handle);
}

const void* value_as_object(int value) {
  // NOLINTNEXTLINE(performance-no-int-to-ptr): it is never followed, only turned back.
  return reinterpret_cast<const void*>(static_cast<std::intptr_t>(value));
}

int object_as_value(const void* object) {
  return static_cast<int>(reinterpret_cast<std::intptr_t>(object));
}

// The two blanks before the number are part of the text that calculations know.
std::string error_message_object_not_found(long handle, std::string type) {
  return type + " object " + " #" + std::to_string(handle) + " not found";
}

bool set_last_error_message(long handle) {
  g_last_error_message.clear();
  const Record* record = find_record(handle);
  if (!record) return false;
  if (record->owner != 0 && !find_record(record->owner))
    throw KelPlugin_Exception(codes::kNotFound, "KelPlugin_Exception");
  if (!record->book) return false;
  const char* message = record->book->errorMessage();
  if (message && std::strcmp(message, "ok") != 0) g_last_error_message = message;
  return !g_last_error_message.empty();
}

namespace {

template <class Value>
short store_unless_failed(long handle, const Value& value, fmx::Data& result) {
  if (set_last_error_message(handle)) return codes::kLibrary;
  SetResult(value, result);
  return codes::kNone;
}

}  // namespace

short set_result(long handle, std::wstring value, fmx::Data& result) {
  return store_unless_failed(handle, value, result);
}

short set_result(long handle, std::string value, fmx::Data& result) {
  return store_unless_failed(handle, value, result);
}

short set_result(long handle, double value, fmx::Data& result) {
  return store_unless_failed(handle, value, result);
}

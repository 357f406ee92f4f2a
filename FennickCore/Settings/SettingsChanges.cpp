#include "FennickCore/Settings/SettingsChanges.h"

#include "FennickCore/Settings/SettingsFields.h"

namespace fennick {

namespace {

// Returns the field with this name and type, which the record has.
template <typename Field>
Field &fieldNamed(auto &record, std::string_view key) {
  Field *found = nullptr;
  forEachField(record, [&](std::string_view name, auto &field) {
    if constexpr (std::same_as<std::remove_reference_t<decltype(field)>, Field>)
      if (name == key)
        found = &field;
  });
  return *found;
}

template <typename T>
void carry(const T &before, const T &after, T &into) {
  if (!(before == after))
    into = after;
}

template <SettingsRecord Record>
void carry(const Record &before, const Record &after, Record &into);

void carry(const NamingPolicy &before, const NamingPolicy &after, NamingPolicy &into) {
  const auto *old = std::get_if<PrefixSequenceNaming>(&before);
  const auto *wanted = std::get_if<PrefixSequenceNaming>(&after);
  auto *kept = std::get_if<PrefixSequenceNaming>(&into);
  if (old != nullptr && wanted != nullptr && kept != nullptr)
    carry(*old, *wanted, *kept);
  else if (before != after)
    into = after;
}

template <SettingsRecord Record>
void carry(const Record &before, const Record &after, Record &into) {
  forEachField(after, [&]<typename Field>(std::string_view key, const Field &value) {
    carry(fieldNamed<const Field>(before, key), value, fieldNamed<Field>(into, key));
  });
}

} // namespace

void carryChanges(const AppSettings &before, const AppSettings &after, AppSettings &into) {
  carry(before, after, into);
}

} // namespace fennick

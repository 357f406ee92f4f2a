#include "FennickCore/Platform/Network/Firewalld.h"

#include <fmt/format.h>
#include <gio/gio.h>

#include <bit>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <stop_token>
#include <thread>

namespace fennick {

namespace {

constexpr const char *kName = "org.fedoraproject.FirewallD1";
constexpr const char *kObject = "/org/fedoraproject/FirewallD1";
constexpr const char *kZones = "org.fedoraproject.FirewallD1.zone";

struct Unref {
  void operator()(GVariant *value) const { ::g_variant_unref(value); }
  void operator()(gpointer object) const { ::g_object_unref(object); }
};
template <typename T>
using Owned = std::unique_ptr<T, Unref>;

// Cancels the GIO operation once the time is up. GIO has no time-out of its own for a bus that accepts a
// connection and then does not answer.
class Deadline {
public:
  explicit Deadline(Seconds patience)
      : thread_([this, patience](const std::stop_token &stop) { wait(stop, patience); }) {}
  [[nodiscard]] GCancellable *get() const { return cancellable_.get(); }

private:
  void wait(const std::stop_token &stop, Seconds patience) {
    std::mutex mutex;
    std::unique_lock lock(mutex);
    std::condition_variable_any never;
    if (!never.wait_for(lock, stop, patience, [&] { return stop.stop_requested(); }))
      ::g_cancellable_cancel(cancellable_.get());
  }

  const Owned<GCancellable> cancellable_{::g_cancellable_new()};
  std::jthread thread_; // last: it uses the above
};

// Opens a private connection: the shared one of GIO ends the program when the bus closes it.
Owned<GDBusConnection> connected(const std::string &busAddress, const Deadline &deadline) {
  const std::unique_ptr<char, decltype(&::g_free)> address(
      busAddress.empty() ? ::g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SYSTEM, deadline.get(), nullptr)
                         : ::g_strdup(busAddress.c_str()),
      &::g_free);
  if (!address)
    return {};
  constexpr unsigned kFlags =
      G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT | G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION;
  return Owned<GDBusConnection>(::g_dbus_connection_new_for_address_sync(
      address.get(), std::bit_cast<GDBusConnectionFlags>(kFlags), nullptr, deadline.get(), nullptr));
}

class Conversation {
public:
  Conversation(const std::string &busAddress, Seconds patience)
      : deadline_(patience), connection_(connected(busAddress, deadline_)) {}

  [[nodiscard]] bool isServiceThere() const {
    return connection_ && flag(ask("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                   "NameHasOwner", {kName}))
                              .value_or(false);
  }
  [[nodiscard]] std::string zoneOf(const std::string &interface) const {
    std::string zone;
    if (!interface.empty())
      zone = text(ask(kName, kObject, kZones, "getZoneOfInterface", {interface}));
    return zone.empty() ? text(ask(kName, kObject, kName, "getDefaultZone", {})) : zone;
  }
  [[nodiscard]] std::optional<bool> hasPort(const std::string &zone, std::uint16_t port) const {
    return flag(ask(kName, kObject, kZones, "queryPort", {zone, fmt::to_string(port), "tcp"}));
  }
  // The settings contain only values that differ from the default.
  [[nodiscard]] std::optional<std::string> targetOf(const std::string &zone) const {
    const auto reply = ask(kName, kObject, kZones, "getZoneSettings2", {zone});
    if (!reply || ::g_variant_is_of_type(reply.get(), G_VARIANT_TYPE("(a{sv})")) == FALSE)
      return std::nullopt;
    const Owned<GVariant> settings(::g_variant_get_child_value(reply.get(), 0));
    const Owned<GVariant> target(::g_variant_lookup_value(settings.get(), "target", G_VARIANT_TYPE_STRING));
    return target ? ::g_variant_get_string(target.get(), nullptr) : "default";
  }

private:
  // Returns the reply to a call with string arguments, or an empty pointer if it failed or was refused.
  [[nodiscard]] Owned<GVariant> ask(const char *name, const char *object, const char *interface,
                                    const char *method, std::initializer_list<std::string> texts) const {
    GVariantBuilder arguments;
    ::g_variant_builder_init(&arguments, G_VARIANT_TYPE_TUPLE);
    for (const std::string &one : texts)
      ::g_variant_builder_add_value(&arguments, ::g_variant_new_string(one.c_str()));
    return Owned<GVariant>(::g_dbus_connection_call_sync(
        connection_.get(), name, object, interface, method, ::g_variant_builder_end(&arguments), nullptr,
        G_DBUS_CALL_FLAGS_NO_AUTO_START, -1, deadline_.get(), nullptr));
  }
  static std::optional<bool> flag(const Owned<GVariant> &reply) {
    if (!reply || ::g_variant_is_of_type(reply.get(), G_VARIANT_TYPE("(b)")) == FALSE)
      return std::nullopt;
    const Owned<GVariant> value(::g_variant_get_child_value(reply.get(), 0));
    return ::g_variant_get_boolean(value.get()) != FALSE;
  }
  static std::string text(const Owned<GVariant> &reply) {
    if (!reply || ::g_variant_is_of_type(reply.get(), G_VARIANT_TYPE("(s)")) == FALSE)
      return {};
    const Owned<GVariant> value(::g_variant_get_child_value(reply.get(), 0));
    return ::g_variant_get_string(value.get(), nullptr);
  }

  const Deadline deadline_;
  const Owned<GDBusConnection> connection_;
};

} // namespace

std::optional<FirewalldAnswers> askFirewalld(std::uint16_t port, const std::string &interface,
                                             const std::string &busAddress, Seconds patience) {
  const Conversation firewalld(busAddress, patience);
  if (!firewalld.isServiceThere())
    return std::nullopt;
  FirewalldAnswers answers{.zone = firewalld.zoneOf(interface)};
  if (answers.zone.empty())
    return answers;
  answers.hasPort = firewalld.hasPort(answers.zone, port);
  answers.target = firewalld.targetOf(answers.zone);
  return answers;
}

} // namespace fennick

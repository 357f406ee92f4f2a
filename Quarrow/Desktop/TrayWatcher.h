#pragma once

#include <QAbstractNativeEventFilter>
#include <QColor>
#include <QDBusConnection>
#include <QObject>

#include <cstdint>
#include <optional>

namespace quarrow {

// Reports whether the session has a tray, and when that changes: panels start after programs of the
// autostart, and may be restarted. Does not poll. Main thread.
//
// With the first icon Qt decides which kind of tray it uses for the whole run, so a later tray of the other
// kind does not count.
class TrayWatcher final : public QObject, public QAbstractNativeEventFilter {
  Q_OBJECT

public:
  explicit TrayWatcher(const QDBusConnection &bus);
  ~TrayWatcher() override;
  TrayWatcher(const TrayWatcher &) = delete;
  TrayWatcher &operator=(const TrayWatcher &) = delete;

  [[nodiscard]] bool hasTray() const { return kind_ && present_; }
  // Returns the colour of monochrome icons if the bar announces it.
  [[nodiscard]] std::optional<QColor> foreground() const;

  bool nativeEventFilter(const QByteArray &type, void *message, qintptr *result) override;

signals:
  void changed();
  void foregroundChanged();

private:
  enum class Kind {
    notifier, // a StatusNotifierWatcher on the session bus
    embedding // the owner of the X server's tray selection
  };

  void noteNotifier(bool present);
  void lookForEmbedding();
  void note(Kind kind, bool present);

  std::optional<Kind> kind_; // of the first tray
  bool present_ = false;
  std::uint32_t selection_ = 0; // the X11 selection of the tray; 0 without an X server
  std::uint32_t manager_ = 0;   // the window that holds it
};

} // namespace quarrow

#pragma once

#include "Quarrow/App/Applications.h"

#include <QAbstractListModel>
#include <QString>

#include <vector>

namespace quarrow {

// The applications to choose from, filtered by names that contain `search`. Main thread.
class ApplicationList : public QAbstractListModel {
  Q_OBJECT
  Q_PROPERTY(QString search READ search WRITE setSearch NOTIFY searchChanged)
  Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
  enum Role {
    NameRole = Qt::UserRole, // "name"
    PictureRole,             // "picture": of its icon, a path or a theme's name; empty: none
    EntryRole,               // "entry": the path of the desktop entry
    IsMadeForItRole,         // "isMadeForIt": opens pictures
  };

  using QAbstractListModel::QAbstractListModel;

  void setApplications(std::vector<applications::InstalledApplication> applications);
  [[nodiscard]] QString search() const { return search_; }
  void setSearch(const QString &search);
  [[nodiscard]] int count() const { return static_cast<int>(shown_.size()); }

  [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
  [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

signals:
  void searchChanged();
  void countChanged();

private:
  void narrow();

  std::vector<applications::InstalledApplication> all_;
  std::vector<applications::InstalledApplication> shown_;
  QString search_;
};

} // namespace quarrow

#include "StUiIcons.h"

#include <QFile>

namespace stui {

QIcon stIcon(int id) {
  const QString path = QStringLiteral(":/stui/icons/%1.xpm").arg(id);
  if (!QFile::exists(path)) return QIcon();
  return QIcon(path);
}

}  // namespace stui

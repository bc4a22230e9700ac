#include "HostQtTaskDialog.h"

#include <QCommandLinkButton>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>
#include <algorithm>

#include "HostQtText.h"

namespace {
QIcon standardIcon(const QStyle* style, HostIcon icon) {
  switch (icon) {
    case HostIcon::kInformation:
      return style->standardIcon(QStyle::SP_MessageBoxInformation);
    case HostIcon::kWarning:
      return style->standardIcon(QStyle::SP_MessageBoxWarning);
    case HostIcon::kError:
      return style->standardIcon(QStyle::SP_MessageBoxCritical);
    case HostIcon::kQuestion:
      return style->standardIcon(QStyle::SP_MessageBoxQuestion);
    case HostIcon::kNone:
      break;
  }
  return QIcon();
}

QLabel* textLabel(const QString& text, QWidget* parent) {
  auto* label = new QLabel(text, parent);
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  label->setTextInteractionFlags(Qt::TextSelectableByMouse);
  return label;
}
}  // namespace

HostQtTaskDialog::HostQtTaskDialog(const HostTaskDialog& dialog, QWidget* parent)
    : QDialog(parent) {
  setWindowTitle(plainLines(dialog.windowTitle));
  setModal(true);

  auto* top = new QHBoxLayout;
  const QIcon icon = standardIcon(style(), dialog.icon);
  if (!icon.isNull()) {
    auto* iconLabel = new QLabel(this);
    const int size = style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, this);
    iconLabel->setPixmap(icon.pixmap(size, size));
    iconLabel->setAlignment(Qt::AlignTop | Qt::AlignHCenter);
    top->addWidget(iconLabel);
  }
  auto* texts = new QVBoxLayout;
  QLabel* instruction = textLabel(plainLines(dialog.mainInstruction), this);
  QFont big = instruction->font();
  big.setBold(true);
  big.setPointSizeF(big.pointSizeF() * 1.25);
  instruction->setFont(big);
  texts->addWidget(instruction);
  if (!dialog.content.isEmpty()) texts->addWidget(textLabel(plainLines(dialog.content), this));
  texts->addStretch(1);
  top->addLayout(texts, 1);

  auto* layout = new QVBoxLayout(this);
  layout->addLayout(top);

  QBoxLayout* row = dialog.commandLinks ? static_cast<QBoxLayout*>(new QVBoxLayout)
                                        : static_cast<QBoxLayout*>(new QHBoxLayout);
  if (!dialog.commandLinks) row->addStretch(1);
  const int defaultId = dialog.answers().front();
  for (const HostTaskDialogButton& choice : dialog.buttons) {
    const QString text = plainLines(choice.text);
    const qsizetype split = text.indexOf(QLatin1Char('\n'));
    const QString first = split < 0 ? text : text.left(split);
    QPushButton* button = nullptr;
    if (dialog.commandLinks) {
      button = new QCommandLinkButton(first, split < 0 ? QString() : text.mid(split + 1), this);
    } else {
      // A push button has room for one line; the note goes to its tool tip.
      button = new QPushButton(first, this);
      if (split >= 0) button->setToolTip(text.mid(split + 1));
    }
    const int id = choice.id;
    connect(button, &QPushButton::clicked, this, [this, id] { choose(id); });
    if (id == defaultId) {
      button->setDefault(true);
      button->setFocus();
    }
    row->addWidget(button);
    buttons_.emplace_back(button, id);
  }
  layout->addSpacing(layout->spacing() * 2);
  layout->addLayout(row);
  // Wide enough that an instruction of a line or two reads as a heading, not a column.
  setMinimumWidth(fontMetrics().averageCharWidth() * 64);
  // As tall as the wrapped texts need at that width; the layout's own guess wraps them for a
  // narrower one and leaves a gap.
  const int width = std::max(minimumWidth(), sizeHint().width());
  if (layout->hasHeightForWidth()) {
    layout->setSizeConstraint(QLayout::SetNoConstraint);
    setMinimumHeight(layout->totalHeightForWidth(width));
    resize(width, minimumHeight());
  }
}

HostQtTaskDialog::~HostQtTaskDialog() = default;

void HostQtTaskDialog::choose(int id) {
  answer_ = id;
  accept();
}

int HostQtTaskDialog::run() {
  answer_ = kHostCancel;
  exec();
  return answer_;
}

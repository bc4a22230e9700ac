#include "HostQtCommandLine.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QEventLoop>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPointer>
#include <QRegularExpression>
#include <QScrollBar>
#include <QStringListModel>
#include <QTextCursor>
#include <QTimer>
#include <QVBoxLayout>
#include <functional>

#include "HostApplication.h"
#include "HostCommandRegistry.h"
#include "HostQtText.h"

namespace {
// What the idle command line asks for, as the host also writes it before a command's name.
const QString kIdlePrompt = QStringLiteral("Command: ");
// Lines of host output kept; older ones scroll away for good.
constexpr int kKeptLines = 2000;

// The input line. A completer's open popup hands keys to the line through event() directly,
// past any event filter, and completes Tab and Enter itself when the line leaves them: so
// they are taken here, before the line moves the focus (Tab) or the popup puts its choice
// back into a line already sent (Enter).
class CommandInput : public QLineEdit {
 public:
  using QLineEdit::QLineEdit;
  std::function<void()> onTab;
  std::function<void()> onEnter;

 protected:
  bool event(QEvent* event) override {
    if (event->type() == QEvent::KeyPress) {
      auto* key = static_cast<QKeyEvent*>(event);
      const bool plain = (key->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
      if (plain && key->key() == Qt::Key_Tab && onTab) {
        onTab();
        event->accept();
        return true;
      }
      if (plain && (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) && onEnter) {
        if (completer()) completer()->popup()->hide();
        onEnter();
        event->accept();
        return true;
      }
    }
    return QLineEdit::event(event);
  }
};

QString firstWord(const QString& line) {
  const QString trimmed = line.trimmed();
  const qsizetype end = trimmed.indexOf(QRegularExpression(QStringLiteral("\\s")));
  return end < 0 ? trimmed : trimmed.left(end);
}
}  // namespace

HostQtCommandLine::HostQtCommandLine(HostCommandRegistry* registry, QWidget* parent)
    : QWidget(parent), registry_(registry) {
  const QFont mono = QFontDatabase::systemFont(QFontDatabase::FixedFont);

  output_ = new QPlainTextEdit(this);
  output_->setReadOnly(true);
  output_->setFont(mono);
  output_->setMaximumBlockCount(kKeptLines);
  output_->setLineWrapMode(QPlainTextEdit::WidgetWidth);
  output_->setFocusPolicy(Qt::ClickFocus);
  const int line = QFontMetrics(mono).lineSpacing();
  output_->setMinimumHeight(3 * line + 2 * output_->frameWidth() + 8);

  prompt_ = new QLabel(kIdlePrompt, this);
  prompt_->setFont(mono);
  auto* input = new CommandInput(this);
  input->onTab = [this] { completeUniquePrefix(); };
  input->onEnter = [this] { enter(); };
  input_ = input;
  input_->setFont(mono);
  input_->setFrame(false);
  input_->setAccessibleName(QStringLiteral("Command line input"));
  input_->installEventFilter(this);
  prompt_->setBuddy(input_);

  completions_ = new QStringListModel(this);
  auto* completer = new QCompleter(completions_, this);
  completer->setCaseSensitivity(Qt::CaseInsensitive);
  completer->setCompletionMode(QCompleter::PopupCompletion);
  completer->setModelSorting(QCompleter::CaseInsensitivelySortedModel);
  input_->setCompleter(completer);
  connect(input_, &QLineEdit::textEdited, this, [this] { refreshCompletion(); });

  auto* row = new QHBoxLayout;
  row->setContentsMargins(4, 0, 4, 2);
  row->setSpacing(0);
  row->addWidget(prompt_);
  row->addWidget(input_, 1);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(2);
  layout->addWidget(output_, 1);
  layout->addLayout(row);
  setFocusProxy(input_);
  setWindowTitle(QStringLiteral("Command Line"));
}

HostQtCommandLine::~HostQtCommandLine() {
  // A command waiting for input gets a cancel; waitForLine sees that the widget went.
  if (loop_) loop_->exit(1);
}

void HostQtCommandLine::append(const QString& text) {
  if (!text.isEmpty() && !echoedCommand_.isNull()) {
    // The host names the command it starts; the line as typed stands in the text already.
    const bool same =
        text.compare(kIdlePrompt + echoedCommand_ + QLatin1Char('\n'), Qt::CaseInsensitive) == 0;
    echoedCommand_ = QString();
    if (same) return;
  }
  writeOutput(text);
}

void HostQtCommandLine::writeOutput(const QString& text) {
  if (text.isEmpty()) return;
  QTextCursor cursor(output_->document());
  cursor.movePosition(QTextCursor::End);
  cursor.insertText(text);
  const qsizetype lastBreak = text.lastIndexOf(QLatin1Char('\n'));
  partialLine_ = lastBreak < 0 ? partialLine_ + text : text.mid(lastBreak + 1);
  updatePrompt();
  output_->verticalScrollBar()->setValue(output_->verticalScrollBar()->maximum());
}

void HostQtCommandLine::updatePrompt() {
  if (!partialLine_.isEmpty())
    prompt_->setText(partialLine_);
  else
    prompt_->setText(waiting_ ? QString() : kIdlePrompt);
}

QString HostQtCommandLine::transcript() const {
  return output_->toPlainText();
}

bool HostQtCommandLine::waitForLine(QString& line) {
  if (waiting_) return false;
  waiting_ = true;
  waitAnswered_ = false;
  waitLine_.clear();
  updatePrompt();
  refreshCompletion();
  input_->setFocus();

  QEventLoop loop;
  loop_ = &loop;
  QPointer<HostQtCommandLine> alive(this);
  loop.exec();
  if (!alive) return false;
  loop_ = nullptr;
  waiting_ = false;
  updatePrompt();
  if (!waitAnswered_) return false;
  line = waitLine_;
  return true;
}

void HostQtCommandLine::enter() {
  const QString line = input_->text();
  input_->clear();
  historyPos_ = -1;
  if (!line.trimmed().isEmpty() && (history_.isEmpty() || history_.last() != line))
    history_.append(line);

  if (waiting_) {
    // After a prompt the host writes the answer itself; without one, show what was typed.
    if (partialLine_.isEmpty()) writeOutput(line + QLatin1Char('\n'));
    waitLine_ = line;
    waitAnswered_ = true;
    if (loop_) loop_->quit();
    return;
  }

  emit lineEntered(line);
  if (line.trimmed().isEmpty()) return;
  writeOutput((partialLine_.isEmpty() ? kIdlePrompt : QString()) + line + QLatin1Char('\n'));
  // The command runs from the event loop, not inside the input line's key handling: it may
  // wait for more input in a loop of its own, during which this widget may even go.
  QTimer::singleShot(0, this, [this, line] {
    HostApplication* app = HostApplication::current();
    if (!app) return;
    QPointer<HostQtCommandLine> alive(this);
    echoedCommand_ = firstWord(line);
    app->sendCommand(toOdString(line + QLatin1Char('\n')));
    if (alive) echoedCommand_ = QString();
  });
}

void HostQtCommandLine::cancel() {
  if (waiting_) {
    input_->clear();
    waitAnswered_ = false;
    if (loop_) loop_->quit();
    return;
  }
  input_->clear();
  historyPos_ = -1;
}

void HostQtCommandLine::showHistory(int step) {
  if (history_.isEmpty()) return;
  if (step < 0) {
    historyPos_ =
        historyPos_ < 0 ? static_cast<int>(history_.size()) - 1 : std::max(0, historyPos_ - 1);
  } else {
    if (historyPos_ < 0) return;
    if (historyPos_ + 1 >= history_.size()) {
      // Past the newest line: back to an empty line, as a shell does.
      historyPos_ = -1;
      input_->clear();
      return;
    }
    ++historyPos_;
  }
  input_->setText(history_[historyPos_]);
}

QStringList HostQtCommandLine::commandNames() const {
  QStringList names;
  // A command waiting for input takes words of its own, not command names.
  if (!registry_ || waiting_) return names;
  for (const OdString& name : registry_->names()) names.append(toQString(name));
  return names;
}

void HostQtCommandLine::refreshCompletion() {
  const QStringList names = commandNames();
  if (names != completions_->stringList()) completions_->setStringList(names);
}

void HostQtCommandLine::completeUniquePrefix() {
  const QString typed = input_->text();
  if (typed.isEmpty() || typed.contains(QLatin1Char(' '))) return;
  QStringList matches;
  for (const QString& name : commandNames())
    if (name.startsWith(typed, Qt::CaseInsensitive)) matches.append(name);
  if (matches.isEmpty()) return;
  // The longest start all matches share: the whole name when only one matches.
  qsizetype common = matches.front().size();
  for (const QString& name : matches) {
    qsizetype n = 0;
    while (n < common && n < name.size() && name[n].toUpper() == matches.front()[n].toUpper()) ++n;
    common = n;
  }
  if (common >= typed.size()) input_->setText(matches.front().left(common));
  if (input_->completer()) input_->completer()->popup()->hide();
}

bool HostQtCommandLine::eventFilter(QObject* watched, QEvent* event) {
  if (watched == input_ && event->type() == QEvent::KeyPress) {
    auto* key = static_cast<QKeyEvent*>(event);
    switch (key->key()) {
      case Qt::Key_Up:
        showHistory(-1);
        return true;
      case Qt::Key_Down:
        showHistory(+1);
        return true;
      case Qt::Key_Escape:
        cancel();
        return true;
      default:
        break;
    }
  } else if (watched == input_ && event->type() == QEvent::FocusIn) {
    refreshCompletion();
  }
  return QWidget::eventFilter(watched, event);
}

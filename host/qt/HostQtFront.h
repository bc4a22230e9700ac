#pragma once

#include <QObject>
#include <QPointer>
#include <cstdio>
#include <functional>
#include <memory>
#include <optional>

#include "HostFrontend.h"
#include "HostViewGeometry.h"

class QStatusBar;
class QWidget;
class HostQtCommandLine;
class HostQtStatusBar;
class HostViewScene;

// The front of the desktop host: message boxes, task dialogs, the command-line window, help
// pages, the status bar and the PDF plotter, in Qt Widgets. Lives on the GUI thread; the host
// application (not owned) calls it there.
//
// Every window it shows is modal to the main window and carries its caption as its window
// title, so a script, an assistive tool or a test finds it by name.
//
// Command-line text goes to the command-line widget and, when an echo stream is set (the
// desktop host sets stdout when it is not a terminal), to that stream as it comes, so that a
// scripted run can be read back.
class HostQtFront : public QObject, public HostFrontend {
  Q_OBJECT

 public:
  explicit HostQtFront(QObject* parent = nullptr);
  ~HostQtFront() override;

  // The window boxes and dialogs are shown over (not owned; may be null).
  void setMainWindow(QWidget* window);
  QWidget* mainWindow() const;
  // The command-line widget text goes to and input comes from (not owned; may be null).
  void setCommandLine(HostQtCommandLine* commandLine);
  // The main window's status bar, offered to modules as a HostQtStatusBar (not owned).
  void setStatusBar(QStatusBar* bar);
  // Where command-line text is also written as it comes; null for nowhere. Not owned.
  void setEcho(std::FILE* echo) { echo_ = echo; }
  // While a script runs, nobody is asked for command input (readCommandInput answers false)
  // and message boxes are still shown.
  void setScriptRunning(bool running) { scriptRunning_ = running; }
  bool scriptRunning() const { return scriptRunning_; }
  // What zoomExtents does: the drawing view's answer (the desktop window sets it). Unset, the
  // front has no view and zoomExtents answers false.
  void setZoomExtentsHandler(std::function<bool(HostDocument*)> handler) {
    zoomExtents_ = std::move(handler);
  }
  // What highlightObjects does: the drawing view's answer (the desktop window sets it).
  using HighlightHandler = std::function<bool(HostDocument*, const OdDbObjectIdArray&, bool)>;
  void setHighlightHandler(HighlightHandler handler) { highlight_ = std::move(handler); }
  // What a plot of a drawing shows when a drawing view has it (the desktop window sets the
  // handler): the view's scene, so the drawing is not read again (null: it is), and the box the
  // view shows (empty: the extents). nullopt, or no handler: the drawing's extents.
  struct PlotView {
    const HostViewScene* scene = nullptr;
    HostViewBox area;
  };
  using PlotAreaHandler = std::function<std::optional<PlotView>(const OdDbDatabase&)>;
  void setPlotAreaHandler(PlotAreaHandler handler) { plotArea_ = std::move(handler); }

  // HostFrontend
  // A QMessageBox with the box's buttons in their usual order, its default button focused.
  // Escape and the close box answer kHostCancel where the box has Cancel; a yes/no box has no
  // Cancel and answers kHostNo, an OK box kHostOk (the answer is always one the box can give).
  // Text and caption are plain text; Windows line ends show as plain line breaks.
  int showMessageBox(const HostMessageBox& box) override;
  // A HostQtTaskDialog; kHostCancel when dismissed.
  int showTaskDialog(const HostTaskDialog& dialog) override;
  void writeCommandLine(const OdString& text) override;
  // Opens the page with the desktop's handler for its URL; false when there is none.
  bool showHelpPage(const OdString& page) override;
  // Waits on the command-line widget (HostQtCommandLine::waitForLine); false at once while a
  // script runs or when there is no widget.
  bool readCommandInput(OdString& line) override;
  // Null until setStatusBar gave a bar.
  HostStatusBar* statusBar() override;
  // A one-page PDF of model space as the drawing view draws it, on white: the plot area
  // (see setPlotAreaHandler) fitted to an A4 page, landscape or portrait as it fits better.
  // The file is replaced only once the new one is whole; `error` names the file and the
  // reason when it cannot be written. An empty drawing gives a blank page.
  bool plotToPdf(OdDbDatabase& db, const OdString& path, OdString& error) override;
  bool zoomExtents(HostDocument* doc) override { return zoomExtents_ && zoomExtents_(doc); }
  bool highlightObjects(HostDocument* doc, const OdDbObjectIdArray& ids, bool zoom) override {
    return highlight_ && highlight_(doc, ids, zoom);
  }

 signals:
  // Text written to the command line, as it comes.
  void commandLineWritten(const QString& text);

 private:
  QPointer<QWidget> mainWindow_;
  QPointer<HostQtCommandLine> commandLine_;
  std::unique_ptr<HostQtStatusBar> statusBar_;
  std::FILE* echo_ = nullptr;
  bool scriptRunning_ = false;
  std::function<bool(HostDocument*)> zoomExtents_;
  HighlightHandler highlight_;
  PlotAreaHandler plotArea_;
};

#pragma once

#include <QString>
#include <QStringList>
#include <QWidget>

#include "HostApDocManagerReactor.h"
#include "HostEdInputContextReactor.h"

class HostApplication;
class HostDocument;
class QPushButton;
class QTableWidget;

// The layers of one drawing as a table: name, on, frozen, colour, linetype and lineweight,
// sorted by name without regard to case, the current layer ticked and in bold.
//
// The panel never writes the drawing. Every change a person makes here (clicking the On or
// Frozen cell, choosing a colour, linetype or lineweight, New, Rename or editing a name in
// place, Delete, Set Current) is sent as a -LAYER line through the host's command line, as a
// menu sends its command, so it shows in the command transcript and runs as a typed one does.
// The line is sent from the event loop once the click is over, and the panel reads the
// drawing afresh after every command, so an edit typed on the command line shows here too.
//
// While any command runs (one waiting for its words on the command line, say) the panel is
// disabled; it takes clicks again once the command ends.
//
// The panel follows the host's current document by itself (and lets go of a document that
// closes); setDocument() shows another one. Delete is enabled only for a layer the command
// would delete (HostLayerRules::whyNotDeletable; its tooltip says why not). `app` is not
// owned and must outlive the panel.
class LayersPanel : public QWidget,
                    public HostApDocManagerReactor,
                    public HostEdInputContextReactor {
  Q_OBJECT

 public:
  enum Column { kCurrent, kName, kOn, kFrozen, kColour, kLinetype, kLineweight, kColumnCount };

  explicit LayersPanel(HostApplication& app, QWidget* parent = nullptr);
  ~LayersPanel() override;

  // Shows the layers of `doc` (null: an empty table); commands go to it, made current first.
  void setDocument(HostDocument* doc);
  HostDocument* document() const { return doc_; }
  // Reads the drawing's layers afresh, keeping the selected layer selected.
  void refresh();

  QTableWidget* table() const { return table_; }
  // The row showing the layer `name` (any case), or -1.
  int rowOf(const QString& name) const;
  // The layer shown in `row`, or empty.
  QString layerAt(int row) const;

  // HostApDocManagerReactor
  void onDocumentBecameCurrent(HostDocument* doc) override;
  void onDocumentClosing(HostDocument* doc) override;
  void onNoDocumentCurrent() override;
  // HostEdInputContextReactor: the panel is disabled while a command runs, so that a click
  // cannot slip its words into the answers a command waits for.
  void commandWillStart(const OdString& commandName) override;
  void afterCommand(const OdString& commandName) override;

 private:
  void fillRow(int row, const QString& name);
  void cellClicked(int row, int column);
  void nameEdited(int row, int column);
  void updateButtons();
  void addLayer();
  void chooseColour(int row);
  // Sends "-LAYER <words>" from the event loop; names in `words` are quoted with quoted().
  void send(const QString& words);
  // `name` in double quotes for the command line; empty (and a message) when it holds one.
  QString quoted(const QString& name);
  QString selectedLayer() const;

  HostApplication& app_;
  HostDocument* doc_ = nullptr;
  QTableWidget* table_;
  QPushButton* newButton_;
  QPushButton* renameButton_;
  QPushButton* deleteButton_;
  QPushButton* currentButton_;
  QStringList linetypes_;
  QString current_;
  // A layer just made with New: once it shows, its name is opened for editing.
  QString editWhenShown_;
  bool filling_ = false;
};

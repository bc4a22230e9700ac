#pragma once

#include "OdString.h"
#include "UICmdProcess.h"

class OdDbDatabase;

// -LAYER: the layers of the current drawing, edited from the command line, each option
// complete on one line so that a script can use it:
//   -LAYER NEW name                    adds a layer (colour 7, linetype Continuous)
//   -LAYER COLOR index name            gives a layer the colour index 1-255
//   -LAYER LTYPE linetype name         gives a layer a linetype the drawing has
//   -LAYER LWEIGHT weight name         gives a layer a lineweight in millimetres from the
//                                      standard list (0.00, 0.05 ... 2.11) or Default; a
//                                      drawing older than release 2000 keeps none
//   -LAYER SET name                    makes a layer current ($CLAYER); not a frozen one
//   -LAYER RENAME old new              renames a layer: the record keeps its handle, and
//                                      whatever names it by its old name (entities, $CLAYER)
//                                      names it by the new one; layer 0 keeps its name
//   -LAYER ON|OFF|FREEZE|THAW name     turns a layer on or off, freezes or thaws it; the
//                                      current layer cannot be frozen
//   -LAYER DELETE name                 erases a layer nothing uses, with what it owns
//                                      (HostLayerRules::whyNotDeletable says which may go)
// Options match without regard to case, and any unambiguous beginning of one does ("C", "Fr",
// "OF", "LW"); layer names and linetypes are found without regard to case too. A name with
// blanks is given in double quotes ("\"Ground floor\""). A word that is missing is asked for
// (HostApplication::getString), so a script gives it as the next word.
//
// Each edit opens the records for write through the kernel, so the drawing's reactors see it
// as any edit, and prints one line saying what it did. Bad input (an unknown option or layer,
// a name that is taken or not a valid layer name, a colour outside 1-255, a missing linetype,
// a lineweight off the list, a layer that may not be deleted, saying why) prints one line saying
// what and where, changes nothing, and execute() returns false; so does a cancelled prompt or the
// lack of a current drawing.
class HostLayerCommand : public UICmdProcess {
 public:
  bool execute() override;

  // Why `name` cannot name a layer ("it is empty", "it contains '*'"); empty when it can.
  static OdString whyInvalidName(const OdString& name);

 private:
  bool addLayer(OdDbDatabase& db);
  bool setColor(OdDbDatabase& db);
  bool setLinetype(OdDbDatabase& db);
  bool setLineweight(OdDbDatabase& db);
  bool setCurrent(OdDbDatabase& db);
  bool rename(OdDbDatabase& db);
  bool setState(OdDbDatabase& db, int option);
  bool erase(OdDbDatabase& db);
};

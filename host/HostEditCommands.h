#pragma once

class HostCommandRegistry;

// Registers the host's edit commands (group "HOSTCORE") in `registry`. Each has a one-line
// form a script can use; a word left out is asked for (HostApplication::getString), so a
// script gives it as the next word. Keywords match without regard to case.
//   -LAYER option ...     edits the layers of the current drawing: see HostLayerCommand.h
//   SELECT ALL|NONE       selects every entity of model space, or nothing
//                         (HostDocument::selection)
//   CHANGE LAYER name     moves the selected entities (erased ones skipped) to a layer
//   NEW                   opens a new, untitled drawing (HostApDocManager::newDocument)
//   ZOOM E|EXTENTS        zooms the current drawing's view to its extents, when the front has
//                         a view (HostFrontend::zoomExtents)
// Each prints one line saying what it did, or what was wrong (and then changes nothing and
// returns false). Edits go through the kernel database, so its reactors see them and the
// document counts as changed.
void registerHostEditCommands(HostCommandRegistry& registry);

#pragma once

#include "StDWSPluginImplBase.h"

namespace st {

// The plug-in that StDWSPlugin::createObject makes: the base on StDWSPlugin with nothing
// added. It has no texts, checks nothing and is done at once.
using StDWSPluginImpl = StDWSPluginImplBase<StDWSPlugin>;

}  // namespace st

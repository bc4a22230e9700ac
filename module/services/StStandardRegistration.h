#pragma once

// Names of the module's configuration and of the default plug-in registration, as they
// stand in the host's configuration tree.
namespace st::config {

inline constexpr const char* kHostCommandData = "cmddata";
inline constexpr const char* kModuleKey = "StandardsAudit";
inline constexpr const char* kPluginsKey = "Plugins";
inline constexpr const char* kPluginDll = "PluginDll";
inline constexpr const char* kPluginClassName = "PluginClassName";
inline constexpr const char* kPluginInUse = "PluginInUse";

// Settings values on the module key.
inline constexpr const char* kAutoFixProperties = "autoFixProperties";
inline constexpr const char* kShowIgnoredProblems = "showIgnoredProblems";
inline constexpr const char* kPreferredFile = "preferredFile";
inline constexpr const char* kAutoFixCommands = "autoFixCommands";

// The host's key describing the publisher of the standard plug-ins, directly under the root.
inline constexpr const char* kPublisherKey = "CadStandardPlugins";
inline constexpr const char* kPublisherDeveloper = "Developer";
inline constexpr const char* kPublisherWebSite = "WebSite";

// The default registration: one library and its plug-in classes, written in this order.
inline constexpr const char* kStandardLibrary = "StStandardPlugins";
inline constexpr const char* kStandardLibraryDll = "StStandardPlugins.dll";
inline constexpr const char* kStandardPlugins[] = {"StDWSLayerPlugin", "StDWSLinetypePlugin",
                                                   "StDWSTextstylePlugin", "StDWSDimstylePlugin"};

// The host system variable that holds the notification mode.
inline constexpr const wchar_t* kNotificationSysVar = L"STANDARDSVIOLATION";

}  // namespace st::config

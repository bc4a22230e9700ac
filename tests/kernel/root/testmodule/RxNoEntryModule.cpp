// Exports only the version entry point, so a loader must refuse it for the missing
// odrxCreateModuleObject.
extern "C" __attribute__((visibility("default"))) unsigned int odrxGetAPIVersion() {
  return 1;
}

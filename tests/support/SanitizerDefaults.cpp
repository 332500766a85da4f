// Sanitizer settings built into the test binary, so that CTest's discovery
// and every test run use them without environment variables.
extern "C" const char *__lsan_default_suppressions() {
  return "leak:libobjc.so\n"         // the GCC runtime's class tables, built at load
         "leak:libfontconfig.so\n"   // the font list cached by the cairo backend
         // The cairo backend's -initGraphics makes a new text matrix each time
         // it runs without freeing the old one; a bitmap-backed context runs it
         // twice. GNUstep's leak, reached through the platform layer's hook.
         "leak:HInitGraphics\n"
         // GNUstep's TIFF reader, which every image load tries first,
         // keeps the 48-byte handle it opens over data that is no TIFF.
         "leak:NSTiffOpenDataRead\n"
         // GNUstep's KVO keeps the record it made for an observation whose
         // object deallocates while observed, even after the observer is
         // removed from inside the object's dealloc (the observation
         // center does that; the record stays GNUstep's).
         "leak:_i_VXObservationCenter__observeKeyPath_ofObject_options_changeHandler_\n"
         // GNUstep's xib loader keeps a reference to what it instantiates:
         // loaded objects outlive every release of the top-level objects it
         // hands over (seen loading both test fixtures).
         "leak:ControlsNibTest\n"
         "leak:_c_NSBundle_ObjectLoader_loadObjectOfKind_fromNibFile_\n"
         "leak:_i_NSBundle_TalvoNibLoading_loadNibNamed_owner_topLevelObjects_\n";
}

extern "C" const char *__asan_default_options() {
  return "fast_unwind_on_malloc=0";  // GNUstep is built without frame pointers
}

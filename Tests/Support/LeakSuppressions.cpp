// Read by the leak sanitizer: fontconfig keeps a few small blocks that nothing points at any more.
extern "C" const char* __lsan_default_suppressions();

extern "C" const char* __lsan_default_suppressions() {
  return "leak:libfontconfig.so\n";
}

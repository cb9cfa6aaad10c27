// What libraries keep for themselves, seen by the leak check since it runs while the program does.

extern "C" const char *__lsan_default_suppressions(); // NOLINT: the sanitizer's own name
extern "C" const char *__lsan_default_suppressions() { return "leak:libfontconfig.so\n"; }

// Mesa's off-screen driver keeps one small record for each drawable size it
// has seen, in a list of its own that it never frees; the leak checker of the
// sanitizer build is told that these are Mesa's.
extern "C" const char* __lsan_default_suppressions() { return "leak:libOSMesa.so\n"; }

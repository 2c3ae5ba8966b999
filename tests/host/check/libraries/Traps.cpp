// Names that are not what they seem, beside one that is.

extern "C" {
__attribute__((visibility("default"))) extern int createValue;
int createValue = 0;
__attribute__((visibility("default"))) void* createTraps() { return nullptr; }
}

__attribute__((visibility("default"))) void* createMangled();
void* createMangled() { return nullptr; }

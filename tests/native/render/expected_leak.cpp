// The component leaves four bytes behind for each set of swap textures, on purpose. The leak checker asks this function
// what it need not report; textures themselves are counted by the tests.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() { return "leak:CreateSwapTextureSet\n"; }

// What the component leaves behind for each set of swap textures (compatibility.md, C41) need not be reported; the
// textures themselves are counted by the tests. The leak checker asks this function.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() { return "leak:CreateSwapTextureSet\n"; }

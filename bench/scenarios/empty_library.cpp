// A library that does nothing but be loaded.

extern "C" __declspec(dllexport) void Nothing() {}

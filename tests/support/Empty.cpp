// Intentionally empty: the source file of targets that only link libraries or precompile headers.

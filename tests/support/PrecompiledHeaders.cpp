// Empty: the target of this file exists for its precompiled headers, which the tests reuse.

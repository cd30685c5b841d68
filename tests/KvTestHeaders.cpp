// Owns the precompiled headers that the test programs share: CMake ties them to a target with a source.

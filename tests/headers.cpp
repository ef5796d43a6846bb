// The source that the precompiled headers of the tests belong to. It holds nothing.

// The precompiled headers of the tests belong to this source, which is otherwise empty.

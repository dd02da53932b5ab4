// Empty. It exists to build the precompiled headers that the tests share.

// Nothing: what the tests share is compiled with the headers that are precompiled for them.

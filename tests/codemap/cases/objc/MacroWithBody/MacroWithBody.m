TEST(Tide, Rises) { check(1); }

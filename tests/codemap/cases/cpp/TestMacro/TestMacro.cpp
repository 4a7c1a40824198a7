TEST(Tide, Rises) { EXPECT_TRUE(a); }
TEST_F(TideTest,
       Ebbs) {
    if (a) { }
}
BOOST_AUTO_TEST_CASE(simple) { }

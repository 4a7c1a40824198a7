class A : public sea::harbour::Tide {};

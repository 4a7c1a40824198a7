enum class A::Kind { one };

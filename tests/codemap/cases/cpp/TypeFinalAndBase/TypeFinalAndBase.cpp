struct A final : B {};
class EXPORT C final : public D { int a; };

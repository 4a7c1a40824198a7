DECLARE(Foo)
class Tide { int a; };

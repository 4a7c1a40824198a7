struct Outer::Inner : Base { int a; };
class sea::Tide { int b; };

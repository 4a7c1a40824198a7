class MACRO(A) Tide : Base { int a; };

class A { struct B: C { enum D { case e } } }

final class A: B {}
public final class C {}

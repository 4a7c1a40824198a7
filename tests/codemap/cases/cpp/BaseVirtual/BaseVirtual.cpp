class A : public virtual B, private C<int> {};

func a<T>(b: T)
    where T: P,
          T.Q == Int
{
}
func c() {}

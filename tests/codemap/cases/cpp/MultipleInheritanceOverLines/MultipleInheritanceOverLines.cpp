class Tide final
    : public Water,
      public Moon<Phase::full>,
      private Secret
{
};

// The kinds of values that the factory knows, family by family.
#include "valueclasses/fastvaluemap.h"
#include "valueclasses/kfactorvalue.h"
#include "valueclasses/selection/valuemultiselection.h"
#include "valueclasses/value.h"
#include "valueclasses/valuebuffer.h"
#include "valueclasses/valueempty.h"
#include "valueclasses/valuekinds_p.h"
#include "valueclasses/valuenumeric.h"
#include "valueclasses/valuenumericwithoffset.h"
#include "valueclasses/valueselection.h"
#include "valueclasses/valuespecialinterest.h"
#include "valueclasses/valuestream.h"

namespace values {

namespace {

void registerScalarKinds(ValueKinds &kinds)
{
    kinds.Add<ValueEmpty>();
#define SPECTREE_ADD(T, FormatClass, Type, Name) kinds.Add<Value<T>>();
    SPECTREE_FOR_EACH_SCALAR(SPECTREE_ADD)
#undef SPECTREE_ADD
#define SPECTREE_ADD(T, FormatClass, Type, Name) kinds.Add<ValueNumeric<T>>();
    SPECTREE_FOR_EACH_NUMERIC(SPECTREE_ADD)
#undef SPECTREE_ADD
    kinds.Add<ValueNumericWithOffset<double>>();
#define SPECTREE_ADD(T, FormatClass, Type, Name) kinds.Add<ValueStream<T>>();
    SPECTREE_FOR_EACH_STREAM(SPECTREE_ADD)
#undef SPECTREE_ADD
    kinds.Add<ValueBuffer>();
}

void registerSequenceKinds(ValueKinds &kinds)
{
#define SPECTREE_ADD(T, FormatClass, Type, Name) kinds.Add<ValueList<T, FormatClass>>();
    SPECTREE_FOR_EACH_LIST_KIND(SPECTREE_ADD)
#undef SPECTREE_ADD
    kinds.Add<ValueSpecialInterest>();
#define SPECTREE_ADD(T, FormatClass, Type, Name) kinds.Add<ValueVector<T, FormatClass>>();
    SPECTREE_FOR_EACH_VECTOR_KIND(SPECTREE_ADD)
#undef SPECTREE_ADD
    kinds.Add<Value<BearingResult>>();
    kinds.Add<ValueKFactor>();
    kinds.Add<KFactorPure>();
}

void registerSelectionKinds(ValueKinds &kinds)
{
    kinds.Add<ValueSelection>();
#define SPECTREE_ADD(Item, Format, Adapter, exclusive, type, name)                                 \
    kinds.Add<ValueMultiSelection<Item, Format, Adapter, exclusive>>();
    SPECTREE_FOR_EACH_MULTI_SELECTION(SPECTREE_ADD)
#undef SPECTREE_ADD
}

void registerSpectralKinds(ValueKinds &kinds)
{
#define SPECTREE_ADD(Y, Handler)                                                                   \
    kinds.Add<ValueMap<Y, Handler>>();                                                             \
    kinds.Add<FastValueMap<Y, Handler>>();
    SPECTREE_FOR_EACH_SAMPLE_PAIR(SPECTREE_ADD)
#undef SPECTREE_ADD
}

} // namespace

void registerKinds(ValueKinds &kinds)
{
    registerScalarKinds(kinds);
    registerSequenceKinds(kinds);
    registerSelectionKinds(kinds);
    registerSpectralKinds(kinds);
}

} // namespace values

#include "core/LayoutDocument.h"

#include "catalogue/ObjectKinds.h"
#include "core/LayoutFormat.h"
#include "base/Runtime.h"

#include <algorithm>

namespace {
constexpr int MaxCountedObjects = 512;

bool isFixedKey(const QString &key)
{
    return key == QLatin1String("start") || key == QLatin1String("finish")
        || key.startsWith(QLatin1String("checkpoint "));
}
} // namespace

LayoutDocument::LayoutDocument(QObject *parent) : QObject(parent) {}

LayoutDocument::~LayoutDocument() = default;

bool LayoutDocument::IsAuSite() const
{
    return ::IsAuSite(m_layoutType);
}

int16_t LayoutDocument::ObjectCount() const
{
    return rt::toInt16(static_cast<long long>(m_objects.Count()) - m_marshallCount);
}

void LayoutDocument::setLaps(uint8_t laps)
{
    if (laps == m_laps)
        return;
    m_laps = laps;
    emit Updated();
}

void LayoutDocument::refuse(Refusal why)
{
    emit Refused(why, m_pointerX, m_pointerY);
}

void LayoutDocument::ObjectAdd(uint8_t ID, int16_t X, int16_t Y, int16_t &Angle, uint8_t &Width, bool &FromView,
                               bool &Selected)
{
    // The limit is tested for equality only, and before anything else, so at the limit
    // even marshall-class objects (which do not count) are refused.
    if (m_objects.Count() - m_marshallCount == MaxCountedObjects) {
        refuse(TooManyObjects);
        return;
    }
    if (FromView) {
        int32_t vx = X;
        int32_t vy = Y;
        if (m_viewToLayout)
            m_viewToLayout(vx, vy);
        X = rt::toInt16(static_cast<long long>(vx));
        Y = rt::toInt16(static_cast<long long>(vy));
    }
    if (X < 1 || X > BoundsWidth() || Y < 1 || Y > BoundsHeight()) {
        refuse(OutsideTheLayout);
        return;
    }

    std::unique_ptr<varnoObject> object;
    bool *uniqueFlag = nullptr;
    bool wasPlaced = false;
    bool counted = false;
    uint8_t route = 0;
    if (ID == Kind::Start) {
        object = std::make_unique<nrmlObject>();
        // Laps goes to 1 before the uniqueness test: a refused second start still sets it.
        m_laps = 1;
        uniqueFlag = &m_hasStart;
    } else if (ID <= Kind::Checkpoint3) {
        object = std::make_unique<ctrlObject>();
        if (Width == 0)
            Width = 10;
        uniqueFlag = ID == Kind::Finish ? &m_hasFinish
            : ID == Kind::Checkpoint1   ? &m_hasCheckpoint1
            : ID == Kind::Checkpoint2   ? &m_hasCheckpoint2
                                        : &m_hasCheckpoint3;
    } else if (ID >= Kind::RestrictedInvisible && ID <= Kind::RouteChecker) {
        object = std::make_unique<mrshObject>();
        if (ID == Kind::RouteChecker) {
            int highest = -1;
            for (const varnoObject &o : m_objects) {
                if (o.ID() == Kind::RouteChecker)
                    highest = std::max(highest, int(o.RouteIndex()));
            }
            route = rt::toByte(static_cast<long long>(highest) + 1);
        }
        m_marshallCount = rt::add16(m_marshallCount, 1);
        counted = true;
        if (Width == 0)
            Width = 10;
    } else {
        rt::checkIndex(ID, 0, KindCount - 1);
        if (FileIndexForKind(ID, IsAuSite()) == NotAtSite) {
            refuse(NotAtThisSite);
            return;
        }
        object = std::make_unique<nrmlObject>();
    }
    if (uniqueFlag) {
        wasPlaced = *uniqueFlag;
        *uniqueFlag = true;
        if (wasPlaced) {
            refuse(AlreadyPlaced);
            return;
        }
    }

    try {
        object->setID(ID);
        object->setX(X);
        object->setY(Y);
        object->setSelected(Selected);
        object->setRouteIndex(route);
        object->Update(Angle, Width);
        // Creation keys are a time stamp and a random number. Objects made within the
        // same second (a file being read) could meet on the same key; they get a new one
        // instead of failing the whole read.
        if (!isFixedKey(object->Key())) {
            for (int tries = 0; tries < 64 && m_objects.Contains(object->Key()); ++tries)
                object->restoreKey(varnoObject::NewKey());
        }
        const QString key = object->Key();
        m_objects.Add(std::move(object), key);
    } catch (...) {
        // Nothing was added, so the counters must not say otherwise.
        if (counted)
            --m_marshallCount;
        if (uniqueFlag)
            *uniqueFlag = false;
        throw;
    }
}

void LayoutDocument::ObjectRemove(const QString &key)
{
    varnoObject &object = m_objects.Item(key);
    switch (object.ID()) {
    case Kind::Start: m_hasStart = false; break;
    case Kind::Finish: m_hasFinish = false; break;
    case Kind::Checkpoint1: m_hasCheckpoint1 = false; break;
    case Kind::Checkpoint2: m_hasCheckpoint2 = false; break;
    case Kind::Checkpoint3: m_hasCheckpoint3 = false; break;
    case Kind::RestrictedInvisible:
    case Kind::RestrictedMarshall:
    case Kind::RestrictedPointLeft:
    case Kind::RestrictedPointRight: m_marshallCount = rt::sub16(m_marshallCount, 1); break;
    case Kind::RouteChecker: {
        // Close the gap so the checkers stay numbered 0, 1, 2, ... in order.
        const uint8_t removed = object.RouteIndex();
        for (varnoObject &o : m_objects) {
            if (o.RouteIndex() > removed)
                o.setRouteIndex(o.RouteIndex() - 1);
        }
        m_marshallCount = rt::sub16(m_marshallCount, 1);
        break;
    }
    default: break;
    }
    m_objects.Remove(key);
}

void LayoutDocument::resetContent()
{
    m_objects.Clear();
    m_marshallCount = 0;
    m_hasStart = m_hasCheckpoint1 = m_hasCheckpoint2 = m_hasCheckpoint3 = m_hasFinish = false;
    m_selection.clear();
    m_bounds = {};
}

// --- placement area --------------------------------------------------------------------

void LayoutDocument::ResetStartMarker()
{
    auto marker = std::make_unique<nrmlObject>();
    marker->setID(Kind::Start);
    marker->Update(0, 0);
    if (const lyt::TypeInfo *type = lyt::typeInfo(m_layoutType)) {
        marker->setX(type->startX);
        marker->setY(type->startY);
        marker->Update(type->startAngle, 0);
    }
    m_startMarker = std::move(marker);
}

// --- selection ---------------------------------------------------------------------

void LayoutDocument::SelectionUpdate(bool Notify)
{
    QList<selObject> list;
    SelectionBox box;
    bool any = false;
    for (const varnoObject &o : m_objects) {
        if (!o.Selected())
            continue;
        if (!any) {
            box = {o.X(), o.Y(), o.X(), o.Y()};
            any = true;
        } else {
            box.left = std::min<int32_t>(box.left, o.X());
            box.top = std::min<int32_t>(box.top, o.Y());
            box.right = std::max<int32_t>(box.right, o.X());
            box.bottom = std::max<int32_t>(box.bottom, o.Y());
        }
    }
    for (int i = 0; i < m_objects.Count(); ++i) {
        const varnoObject &o = m_objects.At(i);
        if (!o.Selected())
            continue;
        selObject s;
        s.strKey = m_objects.KeyAt(i);
        s.X = rt::toInt16(static_cast<long long>(o.X()) - box.left);
        s.Y = rt::toInt16(static_cast<long long>(o.Y()) - box.top);
        list.append(s);
    }
    // A different set of objects starts a new group rotation.
    bool same = list.size() == m_selection.size();
    for (qsizetype i = 0; same && i < list.size(); ++i)
        same = list[i].strKey == m_selection[i].strKey;
    if (!same)
        m_groupAngle = 0;
    m_selection = std::move(list);
    m_bounds = box;
    if (Notify)
        emit Updated();
}

void LayoutDocument::RaiseUpdates()
{
    emit Updated();
    emit ObjectUpdated(m_hasStart, m_hasCheckpoint1, m_hasCheckpoint2, m_hasCheckpoint3, m_hasFinish);
}

// --- undo --------------------------------------------------------------------------

DocumentState LayoutDocument::snapshot() const
{
    DocumentState s;
    s.objects.reserve(size_t(m_objects.Count()));
    for (const varnoObject &o : m_objects)
        s.objects.push_back(std::shared_ptr<const varnoObject>(o.clone()));
    s.marshallCount = m_marshallCount;
    s.hasStart = m_hasStart;
    s.hasCheckpoint1 = m_hasCheckpoint1;
    s.hasCheckpoint2 = m_hasCheckpoint2;
    s.hasCheckpoint3 = m_hasCheckpoint3;
    s.hasFinish = m_hasFinish;
    s.laps = m_laps;
    return s;
}

void LayoutDocument::restore(const DocumentState &s)
{
    m_objects.Clear();
    for (const auto &o : s.objects) {
        std::unique_ptr<varnoObject> copy = o->clone();
        copy->restoreKey(o->Key());
        m_objects.Add(std::move(copy), o->Key());
    }
    m_marshallCount = s.marshallCount;
    m_hasStart = s.hasStart;
    m_hasCheckpoint1 = s.hasCheckpoint1;
    m_hasCheckpoint2 = s.hasCheckpoint2;
    m_hasCheckpoint3 = s.hasCheckpoint3;
    m_hasFinish = s.hasFinish;
    m_laps = s.laps;
    SelectionUpdate(false);
}

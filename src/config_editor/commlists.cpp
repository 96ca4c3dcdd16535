#include "config_editor/commlists.h"

namespace telvane {

CommList &commList(CommLists &lists, CommListId id)
{
    switch (id) {
    case CommListId::Letture:
        return lists.Lst_Letture;
    case CommListId::Scritture:
        return lists.Lst_Scritture;
    case CommListId::RemL:
        return lists.Lst_RemL;
    case CommListId::RemW:
        break;
    }
    return lists.Lst_RemW;
}

const CommList &commList(const CommLists &lists, CommListId id)
{
    return commList(const_cast<CommLists &>(lists), id);
}

void ClearCommLists(CommLists &lists)
{
    for (CommList *list : {&lists.Lst_Letture, &lists.Lst_Scritture, &lists.Lst_RemL, &lists.Lst_RemW})
        list->lines.clear();
}

void EnableCommLists(CommLists &lists)
{
    for (CommList *list : {&lists.Lst_Letture, &lists.Lst_Scritture, &lists.Lst_RemL, &lists.Lst_RemW})
        list->enabled = !list->lines.isEmpty();
}

} // namespace telvane

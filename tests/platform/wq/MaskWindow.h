// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "support/FixtureTest.h"

#include <WQ/CCheckBox.h>
#include <WQ/CComboBox.h>
#include <WQ/CCommonDialog.h>
#include <WQ/CLineEdit.h>
#include <WQ/CLoadingMaskWidget.h>
#include <WQ/CSmallNormalButton.h>

#include <QVBoxLayout>
#include <QtTest>

namespace mask_test
{

/// Takes drops and context menus, and counts them.
struct Place : QWidget {
    explicit Place(QWidget* parent) : QWidget(parent)
    {
        setAcceptDrops(true);
        setMinimumSize(60, 60);
        setFocusPolicy(Qt::StrongFocus);
    }
    void dragEnterEvent(QDragEnterEvent* event) override { event->acceptProposedAction(); }
    void dropEvent(QDropEvent*) override { ++drops; }
    void contextMenuEvent(QContextMenuEvent*) override { ++menus; }

    int drops = 0;
    int menus = 0;
};

/// A panel full of controls, beside a free edit in the same window, and a mask of the panel.
struct MaskWindow : QWidget {
    MaskWindow()
    {
        auto* const outer = new QVBoxLayout(this);
        outer->addWidget(panel = new Place(this));
        outer->addWidget(freeEdit = new WQ::CLineEdit(9, nullptr));
        auto* const page = new WQ::CBaseWidget(panel);
        (new QVBoxLayout(panel))->addWidget(page);
        auto* const inner = new QVBoxLayout(page);
        inner->addWidget(edit = new WQ::CLineEdit(0, nullptr));
        inner->addWidget(button = new WQ::CSmallNormalButton(1, true, 1, nullptr));
        inner->addWidget(check = new WQ::CCheckBox(2, QStringLiteral("启用"), nullptr));
        inner->addWidget(combo = new WQ::CComboBox(3, nullptr));
        inner->addWidget(place = new Place(nullptr));
        combo->addItem(QStringLiteral("黑名单"));
        combo->addItem(QStringLiteral("白名单"));
        mask = new WQ::CLoadingMaskWidget(QStringLiteral("正在加载基础数据"), panel);
        resize(400, 400);
    }

    void open()
    {
        show();
        activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(this));
    }
    void cover()
    {
        open();
        mask->attach(panel);
    }

    Place* panel;
    WQ::CLineEdit* edit;
    WQ::CLineEdit* freeEdit;
    WQ::CSmallNormalButton* button;
    WQ::CCheckBox* check;
    WQ::CComboBox* combo;
    Place* place;
    WQ::CLoadingMaskWidget* mask;
};

/// A dialog that is covered before it is shown.
struct MaskedDialog : WQ::CCommonDialog {
    MaskedDialog()
    {
        setInnerWidget(edit);
        mask->attach(this);
    }

    WQ::CLineEdit* const edit = new WQ::CLineEdit(0, nullptr);
    WQ::CLoadingMaskWidget* const mask = new WQ::CLoadingMaskWidget(QStringLiteral("正在加载风控数据"), this);
};

} // namespace mask_test

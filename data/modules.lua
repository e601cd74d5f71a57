-- SPDX-License-Identifier: Apache-2.0
-- The modules of this installation. A key is switched on by true, or by a table of further keys; a table with
-- on = false is switched off together with everything in it.
return {
    -- institutions
    mdl_portal = {
        mdl_portal_pb = true,
    },
    -- trade types and the accounts that belong to them
    mdl_tradetype = {
        mdl_tradetype_future = true,
        mdl_tradetype_stock = true,
        mdl_tradetype_credit = true,
        mdl_tradetype_gold = true,
        mdl_tradetype_futures_option = true,
        mdl_tradetype_option = true,
        mdl_tradetype_ggt = true,
        mdl_tradetype_sgt = true,
        mdl_tradetype_neeq = true,
        mdl_tradetype_outter = true,
        mdl_tradetype_ib = true,
        mdl_tradetype_interbank = true,
    },
}

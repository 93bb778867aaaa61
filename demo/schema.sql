-- The demo dealership database: a two-wheeler and cycle dealer in Pune with two branches and
-- six sub-dealers. The same text runs on SQLite 3.40 and PostgreSQL 15: plain types, explicit
-- ids, unquoted lower-case names, views of joins, coalesce and case only.
-- docs/demo-database.md describes every table and view and which document reads it.
-- Statements end with a semicolon at the end of a line and comments sit on lines of their own,
-- so a loader may split the text on line-final semicolons.

-- The VAT year, quotations and the top list (their views read the sales tables).
drop view if exists vu_ws_toplist;
drop view if exists vu_quotation;
drop view if exists vu_gst_inward;
drop view if exists vu_gst_outward;
drop view if exists vu_vat_wsheet;
drop table if exists ws_toplistdet;
drop table if exists ws_toplist;
drop table if exists quotation;
drop table if exists gst_hsn;
drop table if exists vat_payment;
drop table if exists vat_cform;
drop table if exists vat_purchase;
drop table if exists vat_sale;
drop table if exists vat_dealer;
drop view if exists vu_vintrf;
drop view if exists vu_btveh;
drop view if exists vu_purveh;
drop view if exists vu_bulkreceipt;
drop view if exists vu_receipt;
drop view if exists vu_tempnumber;
drop view if exists vu_invoicehead;
drop view if exists vu_invoice;
drop view if exists vu_challan;
drop table if exists numbers;
drop table if exists hsrp;
drop table if exists tempreg;
drop table if exists bulkrecdet;
drop table if exists bulkrec;
drop table if exists receipt;
drop table if exists enqdata;
drop table if exists purdata;
drop table if exists invoice;
drop table if exists challan;
drop table if exists vintrfdet;
drop table if exists vintrf;
drop table if exists btdetveh;
drop table if exists btmstveh;
drop table if exists purveh;
drop table if exists vehicle;
drop table if exists purchase;
drop table if exists pricelist;
drop table if exists item;
drop table if exists color;
drop table if exists vehmodel;
drop table if exists customer;
drop table if exists branch;
drop table if exists fa_acmaster;
drop table if exists para_setup;
drop table if exists firm;

-- The dealer firm; templates read it by coid (query "mst" of the wrc template).
create table firm (
  coid integer primary key,
  name varchar(80) not null,
  name_local varchar(80),
  tagline varchar(120),
  add1 varchar(80),
  add2 varchar(80),
  add3 varchar(80),
  city varchar(40),
  district varchar(40),
  state varchar(40),
  state_code varchar(2),
  pin varchar(6),
  phone varchar(40),
  mobile varchar(20),
  email varchar(80),
  website varchar(80),
  gstin varchar(15),
  pan varchar(10),
  dealer_code varchar(20),
  trade_cert varchar(40),
  bank_name varchar(60),
  bank_branch varchar(60),
  bank_acno varchar(20),
  bank_ifsc varchar(11),
  jurisdiction varchar(60),
  logo varchar(80),
  terms varchar(400)
);

-- Application settings. ('CHALLAN','GATEPASS') = 'Y' prints customer challans as gate passes.
create table para_setup (
  para_flag varchar(20) not null,
  para_type varchar(20) not null,
  para_value varchar(100),
  para_desc varchar(120),
  primary key (para_flag, para_type)
);

-- The account master: suppliers, sub-dealers, branch accounts, financiers, banks, cash.
-- It has no column named id: the branch-transfer print joins it with btmstveh by bare "id".
create table fa_acmaster (
  am_id integer primary key,
  am_name varchar(80) not null,
  am_group varchar(20) not null,
  am_add1 varchar(80),
  am_add2 varchar(80),
  am_add3 varchar(80),
  am_town varchar(40),
  am_district varchar(40),
  am_state varchar(40),
  am_statecode varchar(2),
  am_pin varchar(6),
  am_gst varchar(15),
  am_pan varchar(10),
  am_phone varchar(40),
  am_mobile varchar(20),
  am_email varchar(80),
  am_contact varchar(60),
  am_opbal numeric(12,2)
);

create table branch (
  br_id integer primary key,
  coid integer not null references firm (coid),
  br_code varchar(6) not null,
  br_name varchar(60) not null,
  br_add1 varchar(80),
  br_add2 varchar(80),
  br_city varchar(40),
  br_pin varchar(6),
  br_phone varchar(40),
  br_rto varchar(40),
  br_manager varchar(60),
  am_id integer not null references fa_acmaster (am_id),
  br_state varchar(40),
  br_statecode varchar(2)
);

create table customer (
  cust_id integer primary key,
  ctitle varchar(6),
  first_name varchar(40),
  surname varchar(40),
  cname varchar(80) not null,
  relation varchar(3),
  cfname varchar(80),
  cadd1 varchar(80),
  cadd2 varchar(80),
  cadd3 varchar(80),
  ccity varchar(40),
  cdistrict varchar(40),
  cstate varchar(40),
  cstatecode varchar(2),
  cpin varchar(6),
  cmobile varchar(10),
  cphone varchar(20),
  cemail varchar(80),
  cgstin varchar(15),
  cpan varchar(10),
  caadhaar varchar(14),
  cdob date,
  coccupation varchar(40)
);

-- One row per sellable model and variant.
create table vehmodel (
  model_id integer primary key,
  make varchar(40) not null,
  model_code varchar(12) not null,
  model varchar(40) not null,
  variant varchar(40),
  vcat varchar(2) not null,
  vclass varchar(60),
  body_type varchar(30),
  fuel varchar(20),
  hsn varchar(8) not null,
  cc numeric(6,1),
  cylinders integer,
  max_power varchar(30),
  seating integer,
  wheelbase integer,
  unladen_wt integer,
  gross_wt integer,
  emission_norms varchar(20),
  noise_db numeric(5,1),
  battery_kwh numeric(4,2),
  motor_kw numeric(4,2),
  wheel_size varchar(10),
  gears integer,
  type_approval varchar(30),
  mfr_name varchar(80),
  mfr_add varchar(120),
  exsh_price numeric(12,2),
  subsidy_eligible varchar(1)
);

-- Ex-showroom prices (GST included) by period; to_date null means "still in force".
create table pricelist (
  model_id integer not null references vehmodel (model_id),
  from_date date not null,
  to_date date,
  exsh_price numeric(12,2) not null,
  primary key (model_id, from_date)
);

create table color (
  color_id integer primary key,
  color_name varchar(30) not null,
  color_code varchar(6)
);

-- Helmets, accessories and cycle fittings sold on vehicle invoices and challans.
create table item (
  item_id integer primary key,
  item_code varchar(12) not null,
  item_name varchar(60) not null,
  icat varchar(10) not null,
  hsn varchar(8) not null,
  mrp numeric(12,2)
);

-- Purchase bills from the manufacturers (the vehicle purchase print joins supid to am_id).
create table purchase (
  id integer primary key,
  supid integer not null references fa_acmaster (am_id),
  billno varchar(30) not null,
  billdate date not null,
  recdate date,
  grn_no varchar(20),
  br_id integer references branch (br_id),
  nveh integer,
  taxable numeric(12,2),
  cgst numeric(12,2),
  sgst numeric(12,2),
  igst numeric(12,2),
  total numeric(12,2),
  transporter varchar(60),
  lr_no varchar(20),
  lr_date date,
  truck_no varchar(12),
  ewb_no varchar(12),
  remarks varchar(120),
  round_off numeric(12,2),
  ewb_date date
);

create table vehicle (
  veh_id integer primary key,
  model_id integer not null references vehmodel (model_id),
  color_id integer not null references color (color_id),
  chassis varchar(17) not null unique,
  engine varchar(20) unique,
  battery_no varchar(20),
  battery_make varchar(30),
  charger_no varchar(20),
  key_no varchar(10),
  mfg_month integer,
  mfg_year integer,
  purid integer references purchase (id),
  br_id integer references branch (br_id),
  status varchar(10),
  kit_items varchar(120)
);

create table purveh (
  purid integer not null references purchase (id),
  line integer not null,
  veh_id integer not null references vehicle (veh_id),
  hsn varchar(8),
  rate numeric(12,2),
  taxable numeric(12,2),
  cgst_rate numeric(5,2),
  cgst_amt numeric(12,2),
  sgst_rate numeric(5,2),
  sgst_amt numeric(12,2),
  igst_rate numeric(5,2),
  igst_amt numeric(12,2),
  amount numeric(12,2),
  qty integer,
  uom varchar(4),
  primary key (purid, line)
);

-- Branch transfers of vehicles; btto is the receiving branch's account (fa_acmaster.am_id).
create table btmstveh (
  id integer primary key,
  btno varchar(20) not null,
  btdate date not null,
  btfrom integer not null references fa_acmaster (am_id),
  btto integer not null references fa_acmaster (am_id),
  from_br integer references branch (br_id),
  to_br integer references branch (br_id),
  nveh integer,
  btvalue numeric(12,2),
  vehicle_no varchar(12),
  driver varchar(40),
  remarks varchar(120),
  ewb_no varchar(12),
  ewb_date timestamp
);

create table btdetveh (
  btid integer not null references btmstveh (id),
  line integer not null,
  veh_id integer not null references vehicle (veh_id),
  rate numeric(12,2),
  qty integer,
  uom varchar(4),
  primary key (btid, line)
);

-- Vehicle transfer notes between stock points (godown, showroom floor, yards) of the branch
-- br_id, by tid.
create table vintrf (
  tid integer primary key,
  tno varchar(20) not null,
  tdate date not null,
  from_loc varchar(60),
  to_loc varchar(60),
  reason varchar(80),
  authorised_by varchar(40),
  remarks varchar(120),
  br_id integer references branch (br_id)
);

create table vintrfdet (
  tid integer not null references vintrf (tid),
  line integer not null,
  veh_id integer not null references vehicle (veh_id),
  remarks varchar(60),
  qty integer,
  uom varchar(4),
  primary key (tid, line)
);

-- Delivery challans: type 'C' to a customer, 'S' to a sub-dealer. amt = sum of the lines'
-- chlamt + round_off, whole rupees. invid is the invoice the challan was later billed on (no
-- constraint: invoices point back at their challan). Goods sent by truck carry the consignment
-- note (lr_no) and, above Rs. 50,000, an e-way bill.
create table challan (
  id integer primary key,
  type varchar(1) not null,
  num varchar(20) not null,
  cdate date not null,
  br_id integer references branch (br_id),
  cust_id integer references customer (cust_id),
  am_id integer references fa_acmaster (am_id),
  amt numeric(12,2) not null,
  gp_no varchar(20),
  transporter varchar(60),
  truck_no varchar(12),
  prepared_by varchar(40),
  invid integer,
  remarks varchar(120),
  round_off numeric(12,2),
  lr_no varchar(20),
  ewb_no varchar(12),
  ewb_date timestamp
);

-- Vehicle sale invoices: itype 'R' retail (a customer), 'S' a sub-dealer. Totals are the sums
-- of the invoice's purdata lines, and invamt = sum of netprice + round_off, whole rupees;
-- payable = invamt - tot_subsidy. qr_text is the e-invoice's signed QR code (a JSON Web Token).
create table invoice (
  id integer primary key,
  itype varchar(1) not null,
  num varchar(16) not null,
  idate date not null,
  br_id integer references branch (br_id),
  cust_id integer references customer (cust_id),
  am_id integer references fa_acmaster (am_id),
  chlid integer references challan (id),
  veh_id integer references vehicle (veh_id),
  vcat varchar(2),
  hypothecation varchar(80),
  fin_id integer references fa_acmaster (am_id),
  booking_no varchar(20),
  booking_date date,
  executive varchar(40),
  pos_state varchar(40),
  pos_code varchar(2),
  reverse_charge varchar(1),
  tot_taxable numeric(12,2),
  tot_cgst numeric(12,2),
  tot_sgst numeric(12,2),
  tot_igst numeric(12,2),
  invamt numeric(12,2),
  tot_subsidy numeric(12,2),
  payable numeric(12,2),
  irn varchar(64),
  ack_no varchar(20),
  ack_date timestamp,
  qr_text varchar(1500),
  ewb_no varchar(12),
  ewb_date timestamp,
  transporter varchar(60),
  lr_no varchar(20),
  truck_no varchar(12),
  regno varchar(12),
  reg_date date,
  rto varchar(40),
  ins_company varchar(60),
  ins_policy varchar(30),
  ins_from date,
  ins_upto date,
  remarks varchar(120),
  round_off numeric(12,2)
);

-- Item lines of invoices (invid) and challans (chlid); each row belongs to exactly one of them.
-- Each tax is the rate on the taxable value, to the paisa (half up).
-- netprice is the line total including tax (taxable + cgst + sgst + igst); chlamt repeats it on
-- challan lines. subsidyamt is the EV subsidy of the line, 0 on other vehicle lines from
-- October 2024 and null on older lines and on accessory lines.
create table purdata (
  pd_id integer primary key,
  invid integer references invoice (id),
  chlid integer references challan (id),
  line integer not null,
  item_kind varchar(1) not null,
  veh_id integer references vehicle (veh_id),
  model_id integer references vehmodel (model_id),
  item_id integer references item (item_id),
  description varchar(80) not null,
  hsn varchar(8) not null,
  qty integer not null,
  uom varchar(4),
  rate numeric(12,2),
  amount numeric(12,2),
  discount numeric(12,2),
  taxable numeric(12,2),
  cgst_rate numeric(5,2),
  cgst_amt numeric(12,2),
  sgst_rate numeric(5,2),
  sgst_amt numeric(12,2),
  igst_rate numeric(5,2),
  igst_amt numeric(12,2),
  netprice numeric(12,2) not null,
  subsidyamt numeric(12,2),
  chlamt numeric(12,2)
);
create index ix_purdata_invid on purdata (invid, line);
create index ix_purdata_chlid on purdata (chlid, line);

-- Customer enquiries. enq_status: 0 pending, 1 matured, 2 lost; enq_booking 1 when booked.
-- enq_bkstatus, of a booking: BOOKED (open), DELIVERED, CANCELLED (amount kept) or REFUNDED
-- (cancelled, the amount paid back on enq_refunddate), so the booking register can leave out or
-- list apart the bookings that no longer stand.
create table enqdata (
  enq_id integer primary key,
  enq_no varchar(20),
  enq_date date not null,
  br_id integer references branch (br_id),
  enq_name varchar(80) not null,
  enq_add varchar(80),
  enq_city varchar(40),
  enq_mobile varchar(10),
  enq_model varchar(60) not null,
  enq_model_id integer references vehmodel (model_id),
  enq_color varchar(30),
  enq_source varchar(20),
  enq_exec varchar(40),
  enq_status integer not null,
  enq_booking integer not null,
  enq_bookdate date,
  enq_bookamt numeric(12,2),
  enq_followup date,
  enq_expected date,
  enq_finance varchar(1),
  enq_exchange varchar(1),
  enq_lost_reason varchar(60),
  enq_remarks varchar(120),
  enq_custid integer references customer (cust_id),
  enq_invid integer references invoice (id),
  enq_bkstatus varchar(10),
  enq_refunddate date
);
create index ix_enqdata_date on enqdata (enq_date);

-- Money receipts. ptype: 'C' customer, 'F' financier (loan disbursed), 'S' sub-dealer.
-- mode: CASH, CHEQUE, UPI, NEFT or FINANCE.
create table receipt (
  id integer primary key,
  num varchar(20) not null,
  rdate date not null,
  br_id integer references branch (br_id),
  ptype varchar(1) not null,
  cust_id integer references customer (cust_id),
  am_id integer references fa_acmaster (am_id),
  pname varchar(80) not null,
  amt numeric(12,2) not null,
  mode varchar(8) not null,
  chqno varchar(10),
  chqdate date,
  bank varchar(60),
  refno varchar(30),
  invid integer references invoice (id),
  against varchar(10),
  narration varchar(160),
  cashier varchar(40)
);
create index ix_receipt_rdate on receipt (rdate);

-- Bulk receipts: one payment (a financier's or a sub-dealer's) against several invoices.
create table bulkrec (
  id integer primary key,
  num varchar(20) not null,
  bdate date not null,
  br_id integer references branch (br_id),
  am_id integer not null references fa_acmaster (am_id),
  amt numeric(12,2) not null,
  mode varchar(8) not null,
  chqno varchar(10),
  chqdate date,
  bank varchar(60),
  refno varchar(30),
  narration varchar(160)
);

create table bulkrecdet (
  brid integer not null references bulkrec (id),
  line integer not null,
  invid integer not null references invoice (id),
  amt numeric(12,2) not null,
  remarks varchar(60),
  primary key (brid, line)
);

-- Temporary registrations, one per certificate line (tline): tno is the temporary registration
-- mark, cert_no the certificate's number in the issuing branch's register.
create table tempreg (
  tline integer primary key,
  tno varchar(20) not null,
  tdate date not null,
  valid_upto date not null,
  invid integer not null references invoice (id),
  rto varchar(40),
  reg_state varchar(40),
  fee numeric(12,2),
  reason varchar(80),
  cert_no varchar(24)
);

-- High-security registration plates ordered for registered vehicles.
create table hsrp (
  hsrp_id integer primary key,
  invid integer not null references invoice (id),
  order_no varchar(20) not null,
  order_date date,
  vendor varchar(60),
  front_laser varchar(12),
  rear_laser varchar(12),
  snap_lock varchar(12),
  fit_date date,
  fee numeric(12,2)
);

-- 1 to 100, for templates that repeat a row (stickers: "n <= :XNO").
create table numbers (
  n integer primary key
);

-- Challans, one row per item line, with the party (customer or sub-dealer) and the vehicle.
create view vu_challan as
select c.id, c.type, c.num, c.cdate, c.br_id, b.br_name, b.coid, c.cust_id, c.am_id, c.amt,
  c.gp_no, c.transporter, c.truck_no, c.prepared_by, c.invid, c.remarks,
  coalesce(cu.ctitle, 'M/s') as ctitle, coalesce(cu.cname, a.am_name) as cname,
  cu.relation, cu.cfname,
  coalesce(cu.cadd1, a.am_add1) as cadd1, coalesce(cu.cadd2, a.am_add2) as cadd2,
  coalesce(cu.cadd3, a.am_add3) as cadd3, coalesce(cu.ccity, a.am_town) as ccity,
  coalesce(cu.cdistrict, a.am_district) as cdistrict, coalesce(cu.cstate, a.am_state) as cstate,
  coalesce(cu.cstatecode, a.am_statecode) as cstatecode, coalesce(cu.cpin, a.am_pin) as cpin,
  coalesce(cu.cmobile, a.am_mobile) as cmobile, coalesce(cu.cgstin, a.am_gst) as cgstin,
  d.line, d.item_kind, d.description, d.hsn, d.qty, d.uom, d.rate, d.amount, d.discount,
  d.taxable, d.cgst_rate, d.cgst_amt, d.sgst_rate, d.sgst_amt, d.igst_rate, d.igst_amt,
  d.netprice, d.chlamt,
  m.make, m.model, m.variant, m.vcat, k.color_name as color, v.chassis, v.engine,
  v.battery_no, v.key_no, v.mfg_month, v.mfg_year, v.kit_items,
  c.round_off, c.lr_no, c.ewb_no, c.ewb_date,
  case when cu.cust_id is not null then case when cu.cadd3 <> cu.ccity then cu.cadd3 end
  else case when a.am_add3 <> a.am_town then a.am_add3 end end as clocality,
  case when cu.cust_id is not null then
    coalesce(cu.cadd1 || ', ', '') ||
      coalesce(case when cu.cadd2 <> cu.ccity then cu.cadd2 || ', ' end, '') ||
      coalesce(case when cu.cadd3 <> cu.ccity then cu.cadd3 || ', ' end, '') || cu.ccity ||
      coalesce(' - ' || cu.cpin, '')
  else
    coalesce(a.am_add1 || ', ', '') ||
      coalesce(case when a.am_add2 <> a.am_town then a.am_add2 || ', ' end, '') ||
      coalesce(case when a.am_add3 <> a.am_town then a.am_add3 || ', ' end, '') || a.am_town ||
      coalesce(' - ' || a.am_pin, '')
  end as caddress
from challan c
join purdata d on d.chlid = c.id
left join branch b on b.br_id = c.br_id
left join customer cu on cu.cust_id = c.cust_id
left join fa_acmaster a on a.am_id = c.am_id
left join vehicle v on v.veh_id = d.veh_id
left join vehmodel m on m.model_id = d.model_id
left join color k on k.color_id = v.color_id;

-- Invoices, one row per item line (line 1 of a retail invoice is its vehicle; accessory lines
-- have null vehicle columns). Carries everything the invoice forms, gate passes, sale letters,
-- form 21/22, HSRP and sticker templates print.
create view vu_invoice as
select i.id, i.itype, i.num, i.idate, i.br_id, b.br_name, b.br_rto, b.coid, i.cust_id, i.am_id,
  i.chlid, i.vcat as inv_vcat, i.hypothecation, i.fin_id, i.booking_no, i.booking_date,
  i.executive, i.pos_state, i.pos_code, i.reverse_charge,
  i.tot_taxable, i.tot_cgst, i.tot_sgst, i.tot_igst, i.invamt, i.tot_subsidy, i.payable,
  i.irn, i.ack_no, i.ack_date, i.qr_text, i.ewb_no, i.ewb_date, i.transporter, i.lr_no,
  i.truck_no, i.regno, i.reg_date, i.rto, i.ins_company, i.ins_policy, i.ins_from, i.ins_upto,
  i.remarks,
  coalesce(cu.ctitle, 'M/s') as ctitle, coalesce(cu.cname, a.am_name) as cname,
  cu.relation, cu.cfname,
  coalesce(cu.cadd1, a.am_add1) as cadd1, coalesce(cu.cadd2, a.am_add2) as cadd2,
  coalesce(cu.cadd3, a.am_add3) as cadd3, coalesce(cu.ccity, a.am_town) as ccity,
  coalesce(cu.cdistrict, a.am_district) as cdistrict, coalesce(cu.cstate, a.am_state) as cstate,
  coalesce(cu.cstatecode, a.am_statecode) as cstatecode, coalesce(cu.cpin, a.am_pin) as cpin,
  coalesce(cu.cmobile, a.am_mobile) as cmobile, coalesce(cu.cemail, a.am_email) as cemail,
  coalesce(cu.cgstin, a.am_gst) as cgstin, coalesce(cu.cpan, a.am_pan) as cpan,
  cu.cdob, cu.caadhaar,
  d.line, d.item_kind, d.description, d.hsn, d.qty, d.uom, d.rate, d.amount, d.discount,
  d.taxable, d.cgst_rate, d.cgst_amt, d.sgst_rate, d.sgst_amt, d.igst_rate, d.igst_amt,
  d.netprice, d.subsidyamt,
  d.veh_id, m.make, m.model_code, m.model, m.variant, m.vcat, m.vclass, m.body_type, m.fuel,
  m.cc, m.cylinders, m.max_power, m.seating, m.wheelbase, m.unladen_wt, m.gross_wt,
  m.emission_norms, m.noise_db, m.battery_kwh, m.motor_kw, m.wheel_size, m.gears,
  m.type_approval, m.mfr_name, m.mfr_add,
  k.color_name as color, v.chassis, v.engine, v.battery_no, v.battery_make, v.charger_no,
  v.key_no, v.mfg_month, v.mfg_year, v.kit_items,
  h.order_no as hsrp_order_no, h.order_date as hsrp_order_date, h.vendor as hsrp_vendor,
  h.front_laser as hsrp_front_laser, h.rear_laser as hsrp_rear_laser,
  h.snap_lock as hsrp_snap_lock, h.fit_date as hsrp_fit_date, h.fee as hsrp_fee,
  i.round_off,
  case when cu.cust_id is not null then case when cu.cadd3 <> cu.ccity then cu.cadd3 end
  else case when a.am_add3 <> a.am_town then a.am_add3 end end as clocality,
  case when cu.cust_id is not null then
    coalesce(cu.cadd1 || ', ', '') ||
      coalesce(case when cu.cadd2 <> cu.ccity then cu.cadd2 || ', ' end, '') ||
      coalesce(case when cu.cadd3 <> cu.ccity then cu.cadd3 || ', ' end, '') || cu.ccity ||
      coalesce(' - ' || cu.cpin, '')
  else
    coalesce(a.am_add1 || ', ', '') ||
      coalesce(case when a.am_add2 <> a.am_town then a.am_add2 || ', ' end, '') ||
      coalesce(case when a.am_add3 <> a.am_town then a.am_add3 || ', ' end, '') || a.am_town ||
      coalesce(' - ' || a.am_pin, '')
  end as caddress
from invoice i
join purdata d on d.invid = i.id
left join branch b on b.br_id = i.br_id
left join customer cu on cu.cust_id = i.cust_id
left join fa_acmaster a on a.am_id = i.am_id
left join vehicle v on v.veh_id = d.veh_id
left join vehmodel m on m.model_id = d.model_id
left join color k on k.color_id = v.color_id
left join hsrp h on h.invid = i.id;

-- Invoices, one row each, with the vehicle of a retail invoice (null for sub-dealer invoices,
-- whose vehicles are on their lines): for one-page documents that select by a parameter.
create view vu_invoicehead as
select i.id, i.itype, i.num, i.idate, i.br_id, b.br_name, b.br_rto, b.coid, i.cust_id, i.am_id,
  i.chlid, i.vcat, i.hypothecation, i.fin_id, i.booking_no, i.booking_date, i.executive,
  i.pos_state, i.pos_code, i.tot_taxable, i.tot_cgst, i.tot_sgst, i.tot_igst, i.invamt,
  i.tot_subsidy, i.payable, i.irn, i.ack_no, i.ack_date, i.qr_text, i.ewb_no, i.regno,
  i.reg_date, i.rto, i.ins_company, i.ins_policy, i.ins_from, i.ins_upto,
  coalesce(cu.ctitle, 'M/s') as ctitle, coalesce(cu.cname, a.am_name) as cname,
  cu.relation, cu.cfname,
  coalesce(cu.cadd1, a.am_add1) as cadd1, coalesce(cu.cadd2, a.am_add2) as cadd2,
  coalesce(cu.cadd3, a.am_add3) as cadd3, coalesce(cu.ccity, a.am_town) as ccity,
  coalesce(cu.cdistrict, a.am_district) as cdistrict, coalesce(cu.cstate, a.am_state) as cstate,
  coalesce(cu.cpin, a.am_pin) as cpin, coalesce(cu.cmobile, a.am_mobile) as cmobile,
  coalesce(cu.cgstin, a.am_gst) as cgstin, cu.cdob,
  i.veh_id, m.make, m.model_code, m.model, m.variant, m.vclass, m.body_type, m.fuel, m.cc,
  m.cylinders, m.max_power, m.seating, m.wheelbase, m.unladen_wt, m.gross_wt,
  m.emission_norms, m.noise_db, m.battery_kwh, m.motor_kw, m.type_approval, m.mfr_name,
  m.mfr_add, k.color_name as color, v.chassis, v.engine, v.battery_no, v.key_no,
  v.mfg_month, v.mfg_year,
  h.order_no as hsrp_order_no, h.order_date as hsrp_order_date, h.vendor as hsrp_vendor,
  h.front_laser as hsrp_front_laser, h.rear_laser as hsrp_rear_laser,
  h.snap_lock as hsrp_snap_lock, h.fit_date as hsrp_fit_date, h.fee as hsrp_fee,
  i.round_off, i.ewb_date, i.transporter, i.lr_no, i.truck_no,
  case when cu.cust_id is not null then case when cu.cadd3 <> cu.ccity then cu.cadd3 end
  else case when a.am_add3 <> a.am_town then a.am_add3 end end as clocality,
  case when cu.cust_id is not null then
    coalesce(cu.cadd1 || ', ', '') ||
      coalesce(case when cu.cadd2 <> cu.ccity then cu.cadd2 || ', ' end, '') ||
      coalesce(case when cu.cadd3 <> cu.ccity then cu.cadd3 || ', ' end, '') || cu.ccity ||
      coalesce(' - ' || cu.cpin, '')
  else
    coalesce(a.am_add1 || ', ', '') ||
      coalesce(case when a.am_add2 <> a.am_town then a.am_add2 || ', ' end, '') ||
      coalesce(case when a.am_add3 <> a.am_town then a.am_add3 || ', ' end, '') || a.am_town ||
      coalesce(' - ' || a.am_pin, '')
  end as caddress
from invoice i
left join branch b on b.br_id = i.br_id
left join customer cu on cu.cust_id = i.cust_id
left join fa_acmaster a on a.am_id = i.am_id
left join vehicle v on v.veh_id = i.veh_id
left join vehmodel m on m.model_id = v.model_id
left join color k on k.color_id = v.color_id
left join hsrp h on h.invid = i.id;

-- Temporary registration certificates, one row per tline, with invoice, owner and vehicle.
create view vu_tempnumber as
select t.tline, t.tno, t.tdate, t.valid_upto, t.rto as temp_rto, t.reg_state, t.fee, t.reason,
  i.id, t.invid, i.num, i.idate, i.br_id, b.br_name, b.coid, i.hypothecation, i.ins_company,
  i.ins_policy, i.ins_from, i.ins_upto, i.invamt,
  cu.ctitle, cu.cname, cu.relation, cu.cfname, cu.cadd1, cu.cadd2, cu.cadd3, cu.ccity,
  cu.cdistrict, cu.cstate, cu.cpin, cu.cmobile, cu.cdob,
  m.make, m.model, m.variant, m.vclass, m.body_type, m.fuel, m.cc, m.cylinders, m.seating,
  m.unladen_wt, m.gross_wt, m.emission_norms, k.color_name as color, v.chassis, v.engine,
  v.mfg_month, v.mfg_year,
  t.cert_no, case when cu.cadd3 <> cu.ccity then cu.cadd3 end as clocality,
  coalesce(cu.cadd1 || ', ', '') ||
      coalesce(case when cu.cadd2 <> cu.ccity then cu.cadd2 || ', ' end, '') ||
      coalesce(case when cu.cadd3 <> cu.ccity then cu.cadd3 || ', ' end, '') || cu.ccity ||
      coalesce(' - ' || cu.cpin, '') as caddress
from tempreg t
join invoice i on i.id = t.invid
left join branch b on b.br_id = i.br_id
left join customer cu on cu.cust_id = i.cust_id
left join vehicle v on v.veh_id = i.veh_id
left join vehmodel m on m.model_id = v.model_id
left join color k on k.color_id = v.color_id;

-- Money receipts with the invoice and vehicle they were received against.
create view vu_receipt as
select r.id, r.num, r.rdate, r.br_id, b.br_name, b.coid, r.ptype, r.cust_id, r.am_id, r.pname,
  coalesce(cu.cadd1, a.am_add1) as padd1, coalesce(cu.cadd2, a.am_add2) as padd2,
  coalesce(cu.ccity, a.am_town) as pcity, coalesce(cu.cmobile, a.am_mobile) as pmobile,
  r.amt, r.mode, r.chqno, r.chqdate, r.bank, r.refno, r.invid, r.against, r.narration,
  r.cashier, i.num as inv_num, i.idate as inv_date, m.model, k.color_name as color, v.chassis,
  v.engine,
  case when cu.cust_id is not null then
    coalesce(cu.cadd1 || ', ', '') ||
      coalesce(case when cu.cadd2 <> cu.ccity then cu.cadd2 || ', ' end, '') ||
      coalesce(case when cu.cadd3 <> cu.ccity then cu.cadd3 || ', ' end, '') || cu.ccity ||
      coalesce(' - ' || cu.cpin, '')
  else
    coalesce(a.am_add1 || ', ', '') ||
      coalesce(case when a.am_add2 <> a.am_town then a.am_add2 || ', ' end, '') ||
      coalesce(case when a.am_add3 <> a.am_town then a.am_add3 || ', ' end, '') || a.am_town ||
      coalesce(' - ' || a.am_pin, '')
  end as paddress
from receipt r
left join branch b on b.br_id = r.br_id
left join customer cu on cu.cust_id = r.cust_id
left join fa_acmaster a on a.am_id = r.am_id
left join invoice i on i.id = r.invid
left join vehicle v on v.veh_id = i.veh_id
left join vehmodel m on m.model_id = v.model_id
left join color k on k.color_id = v.color_id;

-- Bulk receipts, one row per detail line, with the invoice each line settles.
create view vu_bulkreceipt as
select r.id, r.num, r.bdate, r.br_id, b.br_name, b.coid, r.am_id, a.am_name, a.am_add1,
  a.am_add2, a.am_add3, a.am_town, a.am_gst, r.amt, r.mode, r.chqno, r.chqdate, r.bank,
  r.refno, r.narration, d.line, d.invid, d.amt as line_amt, d.remarks, i.num as inv_num,
  i.idate as inv_date, i.invamt, coalesce(cu.cname, ia.am_name) as cname, m.model,
  v.chassis
from bulkrec r
join bulkrecdet d on d.brid = r.id
join invoice i on i.id = d.invid
left join branch b on b.br_id = r.br_id
left join fa_acmaster a on a.am_id = r.am_id
left join customer cu on cu.cust_id = i.cust_id
left join fa_acmaster ia on ia.am_id = i.am_id
left join vehicle v on v.veh_id = i.veh_id
left join vehmodel m on m.model_id = v.model_id;

-- Vehicle lines of purchase bills, with the receiving branch.
create view vu_purveh as
select p.purid, p.line, p.veh_id, m.model, m.variant, m.model_code, k.color_name as color,
  v.chassis, v.engine, v.mfg_month, v.mfg_year, p.hsn, p.rate, p.taxable, p.cgst_rate,
  p.cgst_amt, p.sgst_rate, p.sgst_amt, p.igst_rate, p.igst_amt, p.amount,
  p.qty, p.uom, u.br_id, b.coid
from purveh p
join purchase u on u.id = p.purid
left join branch b on b.br_id = u.br_id
join vehicle v on v.veh_id = p.veh_id
join vehmodel m on m.model_id = v.model_id
join color k on k.color_id = v.color_id;

-- Vehicle lines of branch transfers, with the transfer: br_id is the sending (issuing) branch.
create view vu_btveh as
select t.btid, t.line, t.veh_id, m.model, m.variant, k.color_name as color, v.chassis,
  v.engine, v.key_no, v.battery_no, t.rate,
  t.qty, t.uom, s.from_br as br_id, b.coid, s.from_br, s.to_br, s.btno, s.btdate, s.vehicle_no,
  s.ewb_no, s.ewb_date
from btdetveh t
join btmstveh s on s.id = t.btid
left join branch b on b.br_id = s.from_br
join vehicle v on v.veh_id = t.veh_id
join vehmodel m on m.model_id = v.model_id
join color k on k.color_id = v.color_id;

-- Vehicle transfer notes, one row per vehicle (templates select by tid).
create view vu_vintrf as
select t.tid, t.tno, t.tdate, t.from_loc, t.to_loc, t.reason, t.authorised_by,
  t.remarks, d.line, d.veh_id, d.remarks as line_remarks, m.model, m.variant,
  k.color_name as color, v.chassis, v.engine, v.key_no, v.mfg_month, v.mfg_year,
  d.qty, d.uom, t.br_id, b.coid
from vintrf t
join vintrfdet d on d.tid = t.tid
left join branch b on b.br_id = t.br_id
join vehicle v on v.veh_id = d.veh_id
join vehmodel m on m.model_id = v.model_id
join color k on k.color_id = v.color_id;

-- ===== Workshop: the spare-parts store (parts master, purchases, transfers, orders, estimates,
-- returns, stock) =====

drop view if exists vu_ws_gstpurchaselines;
drop view if exists vu_ws_estimate;
drop view if exists vu_ws_stktrf;
drop view if exists vu_ws_purret;
drop view if exists vu_ws_po;
drop view if exists vu_ws_purchase;
drop table if exists fin_years;
drop table if exists ws_estimatedet;
drop table if exists ws_estimate;
drop table if exists ws_stktrfdet;
drop table if exists ws_stktrf;
drop table if exists ws_purretdet;
drop table if exists ws_purret;
drop table if exists ws_purchasedet;
drop table if exists ws_purchase;
drop table if exists ws_podet;
drop table if exists ws_po;
drop table if exists ws_partmaster;

-- The parts master: every part the store keeps, with its prices, GST rate and stock. Rates are
-- before GST except part_mrp (GST included); the stock reports read part_ followed by PP, DP or
-- MRP as their rate. part_balance1 is the stock now: part_op1 (the opening on 1 April 2024)
-- plus purchases, less purchase returns and transfers out, plus transfers in, less part_issue
-- (issued to jobs and over the counter). The first letter of part_type classes the part: S
-- spares, L lubricants, A accessories, T tyres and tubes, B batteries.
create table ws_partmaster (
  part_id integer primary key,
  part_no varchar(20) not null unique,
  part_desc varchar(60) not null,
  part_type varchar(10) not null,
  part_source varchar(10) not null,
  part_location varchar(12),
  part_bincard varchar(10),
  part_hsncode varchar(8) not null,
  part_uqc varchar(3) not null,
  part_mrp numeric(12,2) not null,
  part_dp numeric(12,2) not null,
  part_pp numeric(12,2) not null,
  part_igstrate numeric(5,2) not null,
  part_cgstrate numeric(5,2) not null,
  part_sgstrate numeric(5,2) not null,
  part_op1 integer not null,
  part_balance1 integer not null,
  part_issue integer not null,
  part_reorder integer not null
);

-- Purchase orders of the store to its suppliers (fa_acmaster: the makers 1 and 3, and 101-105).
-- od_status OPEN (not yet billed), PART (billed in part, the rest back-ordered) or RECEIVED;
-- pu_id the purchase that billed it. od_value is at the purchase price, before GST.
create table ws_po (
  od_id integer primary key,
  od_no varchar(20) not null unique,
  od_date date not null,
  am_id integer not null references fa_acmaster (am_id),
  br_id integer not null references branch (br_id),
  od_expected date,
  od_status varchar(10) not null,
  od_items integer not null,
  od_qty integer not null,
  od_value numeric(12,2) not null,
  od_by varchar(40),
  pu_id integer,
  od_remarks varchar(120)
);

create table ws_podet (
  od_id integer not null references ws_po (od_id),
  line integer not null,
  part_id integer not null references ws_partmaster (part_id),
  qty integer not null,
  rate numeric(12,2) not null,
  amount numeric(12,2) not null,
  primary key (od_id, line)
);

-- Spares purchases: the supplier's bill as received into the store (pu_no the goods receipt
-- number, pu_date the day the goods came in). Totals are the lines plus the round-off.
create table ws_purchase (
  pu_id integer primary key,
  pu_no varchar(20) not null unique,
  pu_date date not null,
  am_id integer not null references fa_acmaster (am_id),
  bill_no varchar(20) not null,
  bill_date date not null,
  br_id integer not null references branch (br_id),
  od_id integer references ws_po (od_id),
  inter_state varchar(1) not null,
  pu_items integer not null,
  taxable numeric(12,2) not null,
  cgst numeric(12,2) not null,
  sgst numeric(12,2) not null,
  igst numeric(12,2) not null,
  round_off numeric(12,2) not null,
  total numeric(12,2) not null,
  transporter varchar(40),
  lr_no varchar(20),
  checked_by varchar(40),
  remarks varchar(120)
);

-- A purchase's lines as billed (qty) and as checked in: qty_received = qty - qty_short,
-- qty_accepted = qty_received - qty_damaged goes into stock. qty_ordered is the order's (0
-- without one). qty x rate = amount; amount - discount = taxable; each tax its rate on taxable.
create table ws_purchasedet (
  pu_id integer not null references ws_purchase (pu_id),
  line integer not null,
  part_id integer not null references ws_partmaster (part_id),
  description varchar(60) not null,
  hsn varchar(8) not null,
  uqc varchar(3) not null,
  qty_ordered integer not null,
  qty integer not null,
  qty_received integer not null,
  qty_short integer not null,
  qty_damaged integer not null,
  qty_accepted integer not null,
  rate numeric(12,2) not null,
  amount numeric(12,2) not null,
  discount numeric(12,2) not null,
  taxable numeric(12,2) not null,
  gst_rate integer not null,
  cgst_rate numeric(5,2) not null,
  cgst_amt numeric(12,2) not null,
  sgst_rate numeric(5,2) not null,
  sgst_amt numeric(12,2) not null,
  igst_rate numeric(5,2) not null,
  igst_amt numeric(12,2) not null,
  netamt numeric(12,2) not null,
  primary key (pu_id, line)
);

-- Purchase returns (pr_type R: parts sent back, out of stock) and debit notes (D: goods short or
-- damaged on receipt, claimed; never in stock), each against one purchase, at its rates.
create table ws_purret (
  pr_id integer primary key,
  pr_type varchar(1) not null,
  pr_no varchar(20) not null unique,
  pr_date date not null,
  pu_id integer not null references ws_purchase (pu_id),
  am_id integer not null references fa_acmaster (am_id),
  br_id integer not null references branch (br_id),
  inter_state varchar(1) not null,
  pr_reason varchar(60),
  taxable numeric(12,2) not null,
  cgst numeric(12,2) not null,
  sgst numeric(12,2) not null,
  igst numeric(12,2) not null,
  round_off numeric(12,2) not null,
  total numeric(12,2) not null,
  remarks varchar(120)
);

create table ws_purretdet (
  pr_id integer not null references ws_purret (pr_id),
  line integer not null,
  part_id integer not null references ws_partmaster (part_id),
  description varchar(60) not null,
  hsn varchar(8) not null,
  uqc varchar(3) not null,
  qty integer not null,
  reason varchar(30),
  rate numeric(12,2) not null,
  amount numeric(12,2) not null,
  discount numeric(12,2) not null,
  taxable numeric(12,2) not null,
  gst_rate integer not null,
  cgst_rate numeric(5,2) not null,
  cgst_amt numeric(12,2) not null,
  sgst_rate numeric(5,2) not null,
  sgst_amt numeric(12,2) not null,
  igst_rate numeric(5,2) not null,
  igst_amt numeric(12,2) not null,
  netamt numeric(12,2) not null,
  primary key (pr_id, line)
);

-- Stock transfers between the head office store (branch 1, whose stock the parts master holds)
-- and the branches: out when from_br is 1, in when to_br is 1. Within one GSTIN, so no tax: a
-- delivery challan valued at the purchase price.
create table ws_stktrf (
  stk_id integer primary key,
  stk_no varchar(20) not null unique,
  stk_date date not null,
  from_br integer not null references branch (br_id),
  to_br integer not null references branch (br_id),
  stk_items integer not null,
  stk_qty integer not null,
  stk_value numeric(12,2) not null,
  vehicle_no varchar(15),
  sent_by varchar(40),
  remarks varchar(120)
);

create table ws_stktrfdet (
  stk_id integer not null references ws_stktrf (stk_id),
  line integer not null,
  part_id integer not null references ws_partmaster (part_id),
  qty integer not null,
  rate numeric(12,2) not null,
  amount numeric(12,2) not null,
  primary key (stk_id, line)
);

-- Repair estimates for customers' vehicles: parts at their price before GST and labour (kind L,
-- SAC 998714), taxed within the state. An estimate moves no stock.
create table ws_estimate (
  em_id integer primary key,
  em_no varchar(20) not null unique,
  em_date date not null,
  br_id integer not null references branch (br_id),
  cust_id integer not null references customer (cust_id),
  veh_id integer references vehicle (veh_id),
  regno varchar(15),
  model varchar(60),
  chassis varchar(17),
  km integer,
  valid_till date,
  advisor varchar(40),
  complaint varchar(120),
  taxable numeric(12,2) not null,
  cgst numeric(12,2) not null,
  sgst numeric(12,2) not null,
  igst numeric(12,2) not null,
  round_off numeric(12,2) not null,
  total numeric(12,2) not null
);

create table ws_estimatedet (
  em_id integer not null references ws_estimate (em_id),
  line integer not null,
  kind varchar(1) not null,
  part_id integer references ws_partmaster (part_id),
  description varchar(60) not null,
  hsn varchar(8) not null,
  uqc varchar(3) not null,
  qty integer not null,
  rate numeric(12,2) not null,
  amount numeric(12,2) not null,
  discount numeric(12,2) not null,
  taxable numeric(12,2) not null,
  gst_rate integer not null,
  cgst_rate numeric(5,2) not null,
  cgst_amt numeric(12,2) not null,
  sgst_rate numeric(5,2) not null,
  sgst_amt numeric(12,2) not null,
  igst_rate numeric(5,2) not null,
  igst_amt numeric(12,2) not null,
  netamt numeric(12,2) not null,
  primary key (em_id, line)
);

-- The financial years the demo trades in, for reports that run from the start of the year of a
-- date (the vehicle stock summary).
create table fin_years (
  fy_code varchar(7) primary key,
  fy_from date not null,
  fy_to date not null
);

-- A spares purchase, one row per line, with the supplier and where each part is kept (the
-- check sheets and the placement list).
create view vu_ws_purchase as
select p.pu_id, p.pu_no, p.pu_date, p.am_id, p.bill_no, p.bill_date, p.br_id, b.br_name, b.coid,
  p.od_id, o.od_no, o.od_date, p.inter_state, p.pu_items, p.taxable as tot_taxable,
  p.cgst as tot_cgst, p.sgst as tot_sgst, p.igst as tot_igst, p.round_off, p.total,
  p.transporter, p.lr_no, p.checked_by, p.remarks,
  a.am_name, a.am_add1, a.am_add2, a.am_add3, a.am_town, a.am_pin, a.am_state, a.am_statecode,
  a.am_gst, a.am_phone,
  d.line, d.part_id, m.part_no, d.description, d.hsn, d.uqc, d.qty_ordered, d.qty,
  d.qty_received, d.qty_short, d.qty_damaged, d.qty_accepted, d.rate, d.amount, d.discount,
  d.taxable, d.gst_rate, d.cgst_rate, d.cgst_amt, d.sgst_rate, d.sgst_amt, d.igst_rate,
  d.igst_amt, d.netamt,
  m.part_location, m.part_bincard, m.part_type, m.part_source
from ws_purchase p
join ws_purchasedet d on d.pu_id = p.pu_id
join ws_partmaster m on m.part_id = d.part_id
join fa_acmaster a on a.am_id = p.am_id
join branch b on b.br_id = p.br_id
left join ws_po o on o.od_id = p.od_id;

-- A purchase order, one row per line, with the supplier.
create view vu_ws_po as
select o.od_id, o.od_no, o.od_date, o.am_id, o.br_id, b.br_name, b.coid, o.od_expected,
  o.od_status, o.od_items, o.od_qty, o.od_value, o.od_by, o.od_remarks,
  a.am_name, a.am_add1, a.am_add2, a.am_add3, a.am_town, a.am_pin, a.am_state, a.am_statecode,
  a.am_gst, a.am_phone, a.am_email, a.am_contact,
  d.line, d.part_id, m.part_no, m.part_desc, m.part_hsncode, m.part_uqc, m.part_mrp, d.qty,
  d.rate, d.amount, m.part_balance1
from ws_po o
join ws_podet d on d.od_id = o.od_id
join ws_partmaster m on m.part_id = d.part_id
join fa_acmaster a on a.am_id = o.am_id
join branch b on b.br_id = o.br_id;

-- A purchase return or debit note, one row per line, with the supplier and the bill it is
-- against.
create view vu_ws_purret as
select r.pr_id, r.pr_type, r.pr_no, r.pr_date, r.pu_id, p.pu_no, p.bill_no, p.bill_date,
  r.am_id, r.br_id, b.br_name, b.coid, r.inter_state, r.pr_reason, r.taxable as tot_taxable,
  r.cgst as tot_cgst, r.sgst as tot_sgst, r.igst as tot_igst, r.round_off, r.total, r.remarks,
  a.am_name, a.am_add1, a.am_add2, a.am_add3, a.am_town, a.am_pin, a.am_state, a.am_statecode,
  a.am_gst, a.am_phone,
  d.line, d.part_id, m.part_no, d.description, d.hsn, d.uqc, d.qty, d.reason, d.rate, d.amount,
  d.discount, d.taxable, d.gst_rate, d.cgst_rate, d.cgst_amt, d.sgst_rate, d.sgst_amt,
  d.igst_rate, d.igst_amt, d.netamt
from ws_purret r
join ws_purretdet d on d.pr_id = r.pr_id
join ws_purchase p on p.pu_id = r.pu_id
join ws_partmaster m on m.part_id = d.part_id
join fa_acmaster a on a.am_id = r.am_id
join branch b on b.br_id = r.br_id;

-- A stock transfer, one row per line, with both branches.
create view vu_ws_stktrf as
select t.stk_id, t.stk_no, t.stk_date, t.from_br, f.br_name as from_name,
  f.br_add1 as from_add1, f.br_add2 as from_add2, f.br_city as from_city, f.br_pin as from_pin,
  t.to_br, g.br_name as to_name, g.br_add1 as to_add1, g.br_add2 as to_add2,
  g.br_city as to_city, g.br_pin as to_pin, t.from_br as br_id, f.coid, t.stk_items, t.stk_qty,
  t.stk_value, t.vehicle_no, t.sent_by, t.remarks,
  d.line, d.part_id, m.part_no, m.part_desc, m.part_hsncode, m.part_uqc, m.part_location, d.qty,
  d.rate, d.amount
from ws_stktrf t
join ws_stktrfdet d on d.stk_id = t.stk_id
join ws_partmaster m on m.part_id = d.part_id
join branch f on f.br_id = t.from_br
join branch g on g.br_id = t.to_br;

-- An estimate, one row per line, with the customer.
create view vu_ws_estimate as
select e.em_id, e.em_no, e.em_date, e.br_id, b.br_name, b.coid, e.cust_id, e.veh_id, e.regno,
  e.model, e.chassis, e.km, e.valid_till, e.advisor, e.complaint, e.taxable as tot_taxable,
  e.cgst as tot_cgst, e.sgst as tot_sgst, e.igst as tot_igst, e.round_off, e.total,
  c.ctitle, c.cname, c.cadd1, c.cadd2, c.cadd3, c.ccity, c.cpin, c.cmobile, c.cgstin,
  d.line, d.kind, d.part_id, m.part_no, d.description, d.hsn, d.uqc, d.qty, d.rate, d.amount,
  d.discount, d.taxable, d.gst_rate, d.cgst_rate, d.cgst_amt, d.sgst_rate, d.sgst_amt,
  d.igst_rate, d.igst_amt, d.netamt
from ws_estimate e
join ws_estimatedet d on d.em_id = e.em_id
join customer c on c.cust_id = e.cust_id
join branch b on b.br_id = e.br_id
left join ws_partmaster m on m.part_id = d.part_id;

-- Every spares purchase line (inward supplies), and every purchase return and debit note line
-- with its quantity and amounts negative, for the GST summaries. Dated and numbered as the
-- supplier's bill (returns and debit notes by their own date and number); the place of supply
-- is the dealer's state, Maharashtra.
create view vu_ws_gstpurchaselines as
select p.bill_date as doc_date, p.bill_no as doc_no, p.am_id as party_id,
  a.am_name as party_name, a.am_gst as party_gstin, '27' as pos_state_code, d.hsn,
  d.description, d.uqc, d.qty, d.gst_rate, d.taxable, d.cgst_amt as cgst, d.sgst_amt as sgst,
  d.igst_amt as igst, 0.00 as cess
from ws_purchase p
join ws_purchasedet d on d.pu_id = p.pu_id
join fa_acmaster a on a.am_id = p.am_id
union all
select r.pr_date, r.pr_no, r.am_id, a.am_name, a.am_gst, '27', d.hsn, d.description, d.uqc,
  -d.qty, d.gst_rate, -d.taxable, -d.cgst_amt, -d.sgst_amt, -d.igst_amt,
  0.00
from ws_purret r
join ws_purretdet d on d.pr_id = r.pr_id
join fa_acmaster a on a.am_id = r.am_id;


-- ===== Workshop: job cards, job and counter invoices, e-invoices, mechanics, follow-ups =====
-- The workshop's documents select by these ids (16-bit): job cards 20001-, job invoices
-- 22001-, counter invoices 24001-, claims 26001-, follow-ups 28001-, mechanics 301-. A bill is
-- named by its id and its ma_rv, the way the host keeps it beside the number: CASH (series JI/
-- and CI/) or CREDIT (series JCR/ and CCR/, billed on the customer's account in fa_acmaster).

drop view if exists vu_ws_gstsalelines;
drop view if exists vu_ws_followup;
drop view if exists vu_ws_history;
drop view if exists vu_ws_labour;
drop view if exists vu_ws_requisition;
drop view if exists vu_ws_claim;
drop view if exists vu_ws_counterinv;
drop view if exists vu_ws_proforma;
drop view if exists vu_ws_jobinv;
drop view if exists vu_ws_jobcard;
drop table if exists ws_followup;
drop table if exists ws_claimdet;
drop table if exists ws_claim;
drop table if exists ws_counterinvdet;
drop table if exists ws_counterinv;
drop table if exists ws_proformadet;
drop table if exists ws_proforma;
drop table if exists ws_jobinvdet;
drop table if exists ws_jobinv;
drop table if exists ws_labour;
drop table if exists ws_requisition;
drop table if exists ws_jobcomplaint;
drop table if exists ws_jobcard;
drop table if exists ws_mechanic;

-- Mechanics (type M) and supervisors (type S) of each branch's workshop.
create table ws_mechanic (
  mech_id integer primary key,
  mech_name varchar(60) not null,
  mech_type varchar(1) not null,
  br_id integer not null,
  mobile varchar(20),
  skill varchar(60),
  joined date
);

-- Job cards: a vehicle's visit to the workshop, opened at reception. veh_id and cust_id are set
-- for vehicles the dealership sold; the owner as the card records it either way.
create table ws_jobcard (
  job_srl integer primary key,
  job_no varchar(24) not null unique,
  job_date date not null,
  job_intime timestamp not null,
  br_id integer not null,
  cust_id integer,
  am_id integer,
  veh_id integer,
  cname varchar(80) not null,
  cadd1 varchar(80),
  cadd2 varchar(80),
  ccity varchar(40),
  cpin varchar(6),
  cstate varchar(40),
  cstatecode varchar(2),
  cmobile varchar(20),
  cgstin varchar(15),
  regno varchar(16) not null,
  chassis varchar(17) not null,
  engine varchar(20),
  make varchar(40),
  model varchar(60) not null,
  color varchar(40),
  sale_date date,
  kms integer not null,
  fuel_level varchar(20),
  service_type varchar(20) not null,
  coupon_no varchar(24),
  mech_id integer not null references ws_mechanic (mech_id),
  sup_id integer not null references ws_mechanic (mech_id),
  est_amount numeric(12,2) not null,
  promised timestamp,
  delivered timestamp,
  status varchar(10) not null,
  next_date date,
  next_kms integer
);

-- The customer's complaints on a job card, and what the workshop did about each.
create table ws_jobcomplaint (
  job_srl integer not null references ws_jobcard (job_srl),
  line integer not null,
  complaint varchar(120) not null,
  action varchar(120),
  primary key (job_srl, line)
);

-- Parts a mechanic requisitioned from the store for a job (warranty Y: claimed from the maker).
create table ws_requisition (
  req_id integer primary key,
  job_srl integer not null references ws_jobcard (job_srl),
  req_no varchar(24) not null,
  req_date date not null,
  mech_id integer not null references ws_mechanic (mech_id),
  line integer not null,
  part_no varchar(30) not null,
  part_desc varchar(120) not null,
  part_type varchar(10) not null,
  hsn varchar(8) not null,
  qty integer not null,
  mrp numeric(12,2) not null,
  warranty varchar(1) not null
);

-- Labour done on a job, by mechanic (claim FSC or WC: a free service or warranty job the maker
-- pays for).
create table ws_labour (
  lab_id integer primary key,
  job_srl integer not null references ws_jobcard (job_srl),
  line integer not null,
  lab_code varchar(10) not null,
  lab_desc varchar(120) not null,
  mech_id integer not null references ws_mechanic (mech_id),
  hours numeric(5,2) not null,
  charge numeric(12,2) not null,
  claim varchar(3)
);

-- Job (service) invoices: parts at MRP and labour under SAC 998714, one per delivered job.
create table ws_jobinv (
  id integer primary key,
  ma_rv varchar(6) not null,
  inv_no varchar(20) not null unique,
  inv_date date not null,
  job_srl integer,
  br_id integer not null,
  cust_id integer,
  am_id integer,
  cname varchar(80) not null,
  cadd1 varchar(80),
  cadd2 varchar(80),
  ccity varchar(40),
  cpin varchar(6),
  cstate varchar(40),
  cstatecode varchar(2),
  cmobile varchar(20),
  cgstin varchar(15),
  pos_state varchar(40) not null,
  pos_code varchar(2) not null,
  paymode varchar(20),
  tot_parts numeric(12,2) not null,
  tot_labour numeric(12,2) not null,
  tot_discount numeric(12,2) not null,
  tot_taxable numeric(12,2) not null,
  tot_cgst numeric(12,2) not null,
  tot_sgst numeric(12,2) not null,
  tot_igst numeric(12,2) not null,
  round_off numeric(12,2) not null,
  invamt numeric(12,2) not null,
  irn varchar(64),
  ack_no varchar(15),
  ack_date timestamp,
  qr_text varchar(1400),
  remarks varchar(200),
  prepared_by varchar(60)
);

-- Lines of job invoices: item_kind P a part, L labour (uqc OTH, no MRP).
create table ws_jobinvdet (
  invid integer not null references ws_jobinv (id),
  line integer not null,
  item_kind varchar(1) not null,
  code varchar(30) not null,
  description varchar(120) not null,
  hsn varchar(8) not null,
  uqc varchar(3) not null,
  qty integer not null,
  mrp numeric(12,2),
  rate numeric(12,2) not null,
  amount numeric(12,2) not null,
  discount numeric(12,2) not null,
  taxable numeric(12,2) not null,
  gst_rate integer not null,
  cgst_rate numeric(5,2) not null,
  cgst_amt numeric(12,2) not null,
  sgst_rate numeric(5,2) not null,
  sgst_amt numeric(12,2) not null,
  igst_rate numeric(5,2) not null,
  igst_amt numeric(12,2) not null,
  netprice numeric(12,2) not null,
  mech_id integer,
  primary key (invid, line)
);

-- Proforma invoices (estimates) of jobs, by job card.
create table ws_proforma (
  job_srl integer primary key references ws_jobcard (job_srl),
  pf_no varchar(20) not null unique,
  pf_date date not null,
  valid_upto date not null,
  remarks varchar(200)
);

create table ws_proformadet (
  job_srl integer not null references ws_proforma (job_srl),
  line integer not null,
  item_kind varchar(1) not null,
  code varchar(30) not null,
  description varchar(120) not null,
  hsn varchar(8) not null,
  uqc varchar(3) not null,
  qty integer not null,
  mrp numeric(12,2),
  rate numeric(12,2) not null,
  amount numeric(12,2) not null,
  discount numeric(12,2) not null,
  taxable numeric(12,2) not null,
  gst_rate integer not null,
  cgst_rate numeric(5,2) not null,
  cgst_amt numeric(12,2) not null,
  sgst_rate numeric(5,2) not null,
  sgst_amt numeric(12,2) not null,
  igst_rate numeric(5,2) not null,
  igst_amt numeric(12,2) not null,
  netprice numeric(12,2) not null,
  primary key (job_srl, line)
);

-- Parts sold over the counter (job_srl is null).
create table ws_counterinv (
  id integer primary key,
  ma_rv varchar(6) not null,
  inv_no varchar(20) not null unique,
  inv_date date not null,
  job_srl integer,
  br_id integer not null,
  cust_id integer,
  am_id integer,
  cname varchar(80) not null,
  cadd1 varchar(80),
  cadd2 varchar(80),
  ccity varchar(40),
  cpin varchar(6),
  cstate varchar(40),
  cstatecode varchar(2),
  cmobile varchar(20),
  cgstin varchar(15),
  pos_state varchar(40) not null,
  pos_code varchar(2) not null,
  paymode varchar(20),
  tot_parts numeric(12,2) not null,
  tot_labour numeric(12,2) not null,
  tot_discount numeric(12,2) not null,
  tot_taxable numeric(12,2) not null,
  tot_cgst numeric(12,2) not null,
  tot_sgst numeric(12,2) not null,
  tot_igst numeric(12,2) not null,
  round_off numeric(12,2) not null,
  invamt numeric(12,2) not null,
  irn varchar(64),
  ack_no varchar(15),
  ack_date timestamp,
  qr_text varchar(1400),
  remarks varchar(200),
  prepared_by varchar(60)
);

create table ws_counterinvdet (
  invid integer not null references ws_counterinv (id),
  line integer not null,
  item_kind varchar(1) not null,
  code varchar(30) not null,
  description varchar(120) not null,
  hsn varchar(8) not null,
  uqc varchar(3) not null,
  qty integer not null,
  mrp numeric(12,2),
  rate numeric(12,2) not null,
  amount numeric(12,2) not null,
  discount numeric(12,2) not null,
  taxable numeric(12,2) not null,
  gst_rate integer not null,
  cgst_rate numeric(5,2) not null,
  cgst_amt numeric(12,2) not null,
  sgst_rate numeric(5,2) not null,
  sgst_amt numeric(12,2) not null,
  igst_rate numeric(5,2) not null,
  igst_amt numeric(12,2) not null,
  netprice numeric(12,2) not null,
  mech_id integer,
  primary key (invid, line)
);

-- Claims on the manufacturers, e-invoiced to them: docfrom WC (warranty parts and labour) or FSC
-- (free service coupons); the claim e-invoice selects by docid and docfrom.
create table ws_claim (
  docid integer primary key,
  docfrom varchar(3) not null,
  claim_no varchar(20) not null unique,
  claim_date date not null,
  br_id integer not null,
  am_id integer not null,
  maker_ref varchar(24),
  pos_state varchar(40) not null,
  pos_code varchar(2) not null,
  tot_taxable numeric(12,2) not null,
  tot_cgst numeric(12,2) not null,
  tot_sgst numeric(12,2) not null,
  tot_igst numeric(12,2) not null,
  round_off numeric(12,2) not null,
  claimamt numeric(12,2) not null,
  irn varchar(64) not null,
  ack_no varchar(15) not null,
  ack_date timestamp not null,
  qr_text varchar(1400) not null
);

create table ws_claimdet (
  docid integer not null references ws_claim (docid),
  line integer not null,
  job_srl integer not null references ws_jobcard (job_srl),
  chassis varchar(17) not null,
  regno varchar(16) not null,
  item_kind varchar(1) not null,
  code varchar(30) not null,
  description varchar(120) not null,
  hsn varchar(8) not null,
  uqc varchar(3) not null,
  qty integer not null,
  mrp numeric(12,2),
  rate numeric(12,2) not null,
  amount numeric(12,2) not null,
  discount numeric(12,2) not null,
  taxable numeric(12,2) not null,
  gst_rate integer not null,
  cgst_rate numeric(5,2) not null,
  cgst_amt numeric(12,2) not null,
  sgst_rate numeric(5,2) not null,
  sgst_amt numeric(12,2) not null,
  igst_rate numeric(5,2) not null,
  igst_amt numeric(12,2) not null,
  netprice numeric(12,2) not null,
  primary key (docid, line)
);

-- The next service of every vehicle, from its last visit: PENDING, or CALLED with the answer.
create table ws_followup (
  fu_id integer primary key,
  job_srl integer not null references ws_jobcard (job_srl),
  due_service varchar(20) not null,
  due_date date not null,
  due_kms integer not null,
  status varchar(10) not null,
  called_on date,
  remarks varchar(120)
);

-- Job cards with branch, mechanic, supervisor and bill.
create view vu_ws_jobcard as
select j.*, b.br_name, b.br_code, b.coid, m.mech_name, s.mech_name as sup_name,
  i.inv_no, i.inv_date, i.invamt,
  coalesce(j.cadd1 || ', ', '') || coalesce(j.cadd2 || ', ', '') || j.ccity ||
    coalesce(' - ' || j.cpin, '') as caddress
from ws_jobcard j
left join branch b on b.br_id = j.br_id
left join ws_mechanic m on m.mech_id = j.mech_id
left join ws_mechanic s on s.mech_id = j.sup_id
left join ws_jobinv i on i.job_srl = j.job_srl;

-- Job invoices, one row per line, with the job card's vehicle and the line's mechanic.
create view vu_ws_jobinv as
select i.id, i.ma_rv, i.inv_no, i.inv_date, i.job_srl, i.br_id, b.br_name, b.coid, i.cust_id,
  i.am_id, i.cname, i.cadd1, i.cadd2, i.ccity, i.cpin, i.cstate, i.cstatecode, i.cmobile,
  i.cgstin, i.pos_state, i.pos_code, i.paymode, i.tot_parts, i.tot_labour, i.tot_discount,
  i.tot_taxable, i.tot_cgst, i.tot_sgst, i.tot_igst, i.round_off, i.invamt, i.irn, i.ack_no,
  i.ack_date, i.qr_text, i.remarks, i.prepared_by,
  j.job_no, j.job_date, j.regno, j.chassis, j.engine, j.make, j.model, j.color, j.sale_date,
  j.kms, j.service_type, j.coupon_no, j.next_date, j.next_kms, jm.mech_name as job_mechanic,
  js.mech_name as sup_name,
  d.line, d.item_kind, d.code, d.description, d.hsn, d.uqc, d.qty, d.mrp, d.rate, d.amount,
  d.discount, d.taxable, d.gst_rate, d.cgst_rate, d.cgst_amt, d.sgst_rate, d.sgst_amt,
  d.igst_rate, d.igst_amt, d.netprice, d.mech_id, m.mech_name,
  coalesce(i.cadd1 || ', ', '') || coalesce(i.cadd2 || ', ', '') || i.ccity ||
    coalesce(' - ' || i.cpin, '') as caddress
from ws_jobinv i
join ws_jobinvdet d on d.invid = i.id
join ws_jobcard j on j.job_srl = i.job_srl
left join branch b on b.br_id = i.br_id
left join ws_mechanic m on m.mech_id = d.mech_id
left join ws_mechanic jm on jm.mech_id = j.mech_id
left join ws_mechanic js on js.mech_id = j.sup_id;

-- Proforma invoices, one row per line, with the job card and the estimate's totals (the total
-- rounded to the rupee).
create view vu_ws_proforma as
select p.job_srl, p.pf_no, p.pf_date, p.valid_upto, p.remarks, j.job_no, j.job_date, j.br_id,
  b.br_name, b.coid, j.cust_id, j.am_id, j.cname, j.cadd1, j.cadd2, j.ccity, j.cpin, j.cstate,
  j.cstatecode, j.cmobile, j.cgstin, j.regno, j.chassis, j.engine, j.make, j.model, j.color,
  j.kms, j.service_type, m.mech_name, s.mech_name as sup_name,
  d.line, d.item_kind, d.code, d.description, d.hsn, d.uqc, d.qty, d.mrp, d.rate, d.amount,
  d.discount, d.taxable, d.gst_rate, d.cgst_rate, d.cgst_amt, d.sgst_rate, d.sgst_amt,
  d.igst_rate, d.igst_amt, d.netprice,
  coalesce(j.cadd1 || ', ', '') || coalesce(j.cadd2 || ', ', '') || j.ccity ||
    coalesce(' - ' || j.cpin, '') as caddress,
  j.coupon_no, j.sale_date, j.cstate as pos_state, j.cstatecode as pos_code,
  m.mech_name as job_mechanic, s.mech_name as prepared_by, t.tot_parts, t.tot_labour,
  t.tot_discount, t.tot_taxable, t.tot_cgst, t.tot_sgst, t.tot_igst,
  round(t.total, 0) - t.total as round_off, round(t.total, 0) as invamt
from ws_proforma p
join ws_proformadet d on d.job_srl = p.job_srl
join ws_jobcard j on j.job_srl = p.job_srl
join (select job_srl, sum(case when item_kind = 'P' then amount else 0 end) as tot_parts,
    sum(case when item_kind = 'L' then amount else 0 end) as tot_labour,
    sum(discount) as tot_discount, sum(taxable) as tot_taxable, sum(cgst_amt) as tot_cgst,
    sum(sgst_amt) as tot_sgst, sum(igst_amt) as tot_igst, sum(netprice) as total
  from ws_proformadet group by job_srl) t on t.job_srl = p.job_srl
left join branch b on b.br_id = j.br_id
left join ws_mechanic m on m.mech_id = j.mech_id
left join ws_mechanic s on s.mech_id = j.sup_id;

-- Counter invoices, one row per line.
create view vu_ws_counterinv as
select i.id, i.ma_rv, i.inv_no, i.inv_date, i.br_id, b.br_name, b.coid, i.cust_id, i.am_id,
  i.cname, i.cadd1, i.cadd2, i.ccity, i.cpin, i.cstate, i.cstatecode, i.cmobile, i.cgstin,
  i.pos_state, i.pos_code, i.paymode, i.tot_parts, i.tot_discount, i.tot_taxable, i.tot_cgst,
  i.tot_sgst, i.tot_igst, i.round_off, i.invamt, i.irn, i.ack_no, i.ack_date, i.qr_text,
  i.remarks, i.prepared_by,
  d.line, d.item_kind, d.code, d.description, d.hsn, d.uqc, d.qty, d.mrp, d.rate, d.amount,
  d.discount, d.taxable, d.gst_rate, d.cgst_rate, d.cgst_amt, d.sgst_rate, d.sgst_amt,
  d.igst_rate, d.igst_amt, d.netprice,
  coalesce(i.cadd1 || ', ', '') || coalesce(i.cadd2 || ', ', '') || i.ccity ||
    coalesce(' - ' || i.cpin, '') as caddress
from ws_counterinv i
join ws_counterinvdet d on d.invid = i.id
left join branch b on b.br_id = i.br_id;

-- Claims on the manufacturers, one row per line, the maker as the buyer.
create view vu_ws_claim as
select c.docid, c.docfrom, c.claim_no, c.claim_date, c.br_id, b.br_name, b.coid, c.am_id,
  a.am_name as cname, a.am_add1 as cadd1, a.am_add2 as cadd2, a.am_add3 as cadd3,
  a.am_town as ccity, a.am_pin as cpin, a.am_state as cstate, a.am_statecode as cstatecode,
  a.am_gst as cgstin, a.am_pan as cpan, c.maker_ref, c.pos_state, c.pos_code, c.tot_taxable,
  c.tot_cgst, c.tot_sgst, c.tot_igst, c.round_off, c.claimamt, c.irn, c.ack_no, c.ack_date,
  c.qr_text,
  d.line, d.job_srl, j.job_no, j.job_date, d.chassis, d.regno, j.model, j.kms, d.item_kind,
  d.code, d.description, d.hsn, d.uqc, d.qty, d.mrp, d.rate, d.amount, d.discount, d.taxable,
  d.gst_rate, d.cgst_rate, d.cgst_amt, d.sgst_rate, d.sgst_amt, d.igst_rate, d.igst_amt,
  d.netprice, t.tot_parts, t.tot_labour, t.tot_discount,
  coalesce(a.am_add1 || ', ', '') || coalesce(a.am_add2 || ', ', '') ||
    coalesce(a.am_add3 || ', ', '') || a.am_town || coalesce(' - ' || a.am_pin, '') as caddress
from ws_claim c
join ws_claimdet d on d.docid = c.docid
join (select docid, sum(case when item_kind = 'P' then amount else 0 end) as tot_parts,
    sum(case when item_kind = 'L' then amount else 0 end) as tot_labour,
    sum(discount) as tot_discount
  from ws_claimdet group by docid) t on t.docid = c.docid
join ws_jobcard j on j.job_srl = d.job_srl
left join fa_acmaster a on a.am_id = c.am_id
left join branch b on b.br_id = c.br_id;

-- Parts requisitioned, with the job, the mechanic who asked and the job's supervisor.
create view vu_ws_requisition as
select r.req_id, r.job_srl, r.req_no, r.req_date, r.mech_id, m.mech_name, j.sup_id,
  s.mech_name as sup_name, r.line, r.part_no, r.part_desc, r.part_type, r.hsn, r.qty, r.mrp,
  r.qty * r.mrp as value, r.warranty, j.job_no, j.job_date, j.regno, j.model,
  j.service_type, j.cname, j.br_id, b.br_name, b.coid
from ws_requisition r
join ws_jobcard j on j.job_srl = r.job_srl
left join ws_mechanic m on m.mech_id = r.mech_id
left join ws_mechanic s on s.mech_id = j.sup_id
left join branch b on b.br_id = j.br_id;

-- Labour done, with the job, the mechanic who did it and the job's supervisor.
create view vu_ws_labour as
select l.lab_id, l.job_srl, l.line, l.lab_code, l.lab_desc, l.mech_id, m.mech_name, j.sup_id,
  s.mech_name as sup_name, l.hours, l.charge, l.claim, j.job_no, j.job_date, j.regno, j.model,
  j.service_type, j.cname, j.br_id, b.br_name, b.coid
from ws_labour l
join ws_jobcard j on j.job_srl = l.job_srl
left join ws_mechanic m on m.mech_id = l.mech_id
left join ws_mechanic s on s.mech_id = j.sup_id
left join branch b on b.br_id = j.br_id;

-- A vehicle's service history: its job cards with what they were billed.
create view vu_ws_history as
select j.job_srl, j.job_no, j.job_date, j.br_id, b.br_name, b.coid, j.cname, j.cmobile,
  j.regno, j.chassis, j.engine, j.make, j.model, j.color, j.sale_date, j.kms, j.service_type,
  j.coupon_no, j.status, m.mech_name, s.mech_name as sup_name, i.id as inv_id, i.inv_no,
  i.inv_date, coalesce(i.tot_parts, 0) as tot_parts, coalesce(i.tot_labour, 0) as tot_labour,
  coalesce(i.invamt, 0) as invamt, j.next_date, j.next_kms
from ws_jobcard j
left join branch b on b.br_id = j.br_id
left join ws_mechanic m on m.mech_id = j.mech_id
left join ws_mechanic s on s.mech_id = j.sup_id
left join ws_jobinv i on i.job_srl = j.job_srl;

-- Service reminders, with the vehicle, its owner and its last visit.
create view vu_ws_followup as
select f.fu_id, f.job_srl, f.due_service, f.due_date, f.due_kms, f.status, f.called_on,
  f.remarks, j.job_no, j.job_date as last_date, j.kms as last_kms, j.service_type as last_service,
  j.br_id, b.br_name, b.coid, j.cname, j.cmobile, j.regno, j.chassis, j.model, j.sale_date,
  m.mech_name
from ws_followup f
join ws_jobcard j on j.job_srl = f.job_srl
left join branch b on b.br_id = j.br_id
left join ws_mechanic m on m.mech_id = j.mech_id;

-- Every taxable line of the workshop's outward supplies (job, counter and claim e-invoices),
-- for the GST summaries: one row per line, in the columns every GST line view shares.
create view vu_ws_gstsalelines as
select i.inv_date as doc_date, i.inv_no as doc_no, coalesce(i.am_id, i.cust_id) as party_id,
  i.cname as party_name, i.cgstin as party_gstin, i.pos_code as pos_state_code, d.hsn,
  d.description, d.uqc, d.qty, d.gst_rate, d.taxable, d.cgst_amt as cgst, d.sgst_amt as sgst,
  d.igst_amt as igst, 0.00 as cess
from ws_jobinv i join ws_jobinvdet d on d.invid = i.id
union all
select i.inv_date, i.inv_no, coalesce(i.am_id, i.cust_id), i.cname, i.cgstin, i.pos_code,
  d.hsn, d.description, d.uqc, d.qty, d.gst_rate, d.taxable, d.cgst_amt, d.sgst_amt,
  d.igst_amt, 0.00
from ws_counterinv i join ws_counterinvdet d on d.invid = i.id
union all
select c.claim_date, c.claim_no, c.am_id, a.am_name, a.am_gst, c.pos_code, d.hsn,
  d.description, d.uqc, d.qty, d.gst_rate, d.taxable, d.cgst_amt, d.sgst_amt, d.igst_amt,
  0.00
from ws_claim c join ws_claimdet d on d.docid = c.docid
join fa_acmaster a on a.am_id = c.am_id;

-- ===== Accounts: the chart of accounts and the vouchers =====
-- The books are dropped here, before they are made: they sit on the sales side's tables.
drop view if exists vu_oldveh;
drop view if exists vu_gstdcn;
drop view if exists vu_gstvoucher;
drop view if exists vu_voucher;
drop view if exists vu_ledger;
drop table if exists oldveh;
drop table if exists gstdcndet;
drop table if exists gstdcnmst;
drop table if exists gstvdet;
drop table if exists gstvmst;
drop table if exists vchdet;
drop table if exists vchmst;
drop table if exists fa_group;

-- Account groups: each am_group of fa_acmaster under its primary group (grp_id, grp_name:
-- "SUNDRY DEBTORS") and the group's nature (ASSETS, LIABILITIES, INCOME, EXPENSES), as the
-- trial balances list them.
create table fa_group (
  grp_code varchar(20) primary key,
  grp_id integer not null,
  grp_name varchar(40) not null,
  grp_nature varchar(12) not null
);

-- Vouchers: one row per voucher of the books, posted from a document (vm_ref) or entered by
-- the accounts staff (vm_user). vm_type is SALES, PURCHASE, RECEIPT, PAYMENT, JOURNAL, CONTRA,
-- CREDIT NOTE or DEBIT NOTE; vm_amt is the voucher's total of debits.
create table vchmst (
  vm_id integer primary key,
  vm_type varchar(12) not null,
  vm_no varchar(20) not null,
  vm_date date not null,
  br_id integer references branch (br_id),
  vm_ref varchar(30),
  vm_refdate date,
  vm_amt numeric(14,2) not null,
  vm_mode varchar(8),
  vm_chqno varchar(24),
  vm_chqdate date,
  vm_bank varchar(60),
  vm_narration varchar(200) not null,
  vm_user varchar(20) not null,
  vm_checkedby varchar(20)
);
create index ix_vchmst_date on vchmst (vm_date);
create index ix_vchmst_user on vchmst (vm_user, vm_date);

-- Voucher lines: the debit or the credit of one account; vd_against is the account on the
-- other side that a ledger shows as the particulars of the line.
create table vchdet (
  vm_id integer not null references vchmst (vm_id),
  vd_line integer not null,
  am_id integer not null,
  vd_dr numeric(14,2) not null,
  vd_cr numeric(14,2) not null,
  vd_against integer,
  vd_remarks varchar(80),
  primary key (vm_id, vd_line)
);
create index ix_vchdet_account on vchdet (am_id, vm_id);

-- GST vouchers: a creditor's bill of services with input tax (dtype 'G', rent, advertisement,
-- repairs) or a sub-dealer's payout (dtype 'P'); vm_id is the journal that books it.
create table gstvmst (
  did integer primary key,
  dtype varchar(1) not null,
  dnum varchar(20) not null,
  ddate date not null,
  br_id integer references branch (br_id),
  am_id integer not null,
  bill_no varchar(24) not null,
  bill_date date not null,
  taxable numeric(12,2) not null,
  cgst numeric(12,2) not null,
  sgst numeric(12,2) not null,
  igst numeric(12,2) not null,
  damt numeric(12,2) not null,
  narration varchar(200),
  vm_id integer references vchmst (vm_id),
  duser varchar(20)
);

-- Lines of GST vouchers: the expense account, the service and its SAC, the tax split.
create table gstvdet (
  did integer not null references gstvmst (did),
  line integer not null,
  am_id integer not null,
  descr varchar(80) not null,
  sac varchar(8),
  taxable numeric(12,2) not null,
  gst_rate integer not null,
  cgst numeric(12,2) not null,
  sgst numeric(12,2) not null,
  igst numeric(12,2) not null,
  amount numeric(12,2) not null,
  primary key (did, line)
);

-- GST debit notes (dtype 'D', to a supplier against his bill) and credit notes (dtype 'C', to a
-- sub-dealer against our invoice): the original document, the reason, the tax split; damt is
-- the note's amount, which the print writes in words.
create table gstdcnmst (
  did integer primary key,
  dtype varchar(1) not null,
  dnum varchar(20) not null,
  ddate date not null,
  br_id integer references branch (br_id),
  am_id integer not null,
  orig_no varchar(24) not null,
  orig_date date not null,
  reason varchar(120) not null,
  taxable numeric(12,2) not null,
  cgst numeric(12,2) not null,
  sgst numeric(12,2) not null,
  igst numeric(12,2) not null,
  damt numeric(12,2) not null,
  vm_id integer references vchmst (vm_id),
  duser varchar(20)
);

-- Lines of GST debit and credit notes.
create table gstdcndet (
  did integer not null references gstdcnmst (did),
  line integer not null,
  descr varchar(120) not null,
  hsn varchar(8),
  qty integer not null,
  rate numeric(12,2) not null,
  taxable numeric(12,2) not null,
  gst_rate integer not null,
  cgst numeric(12,2) not null,
  sgst numeric(12,2) not null,
  igst numeric(12,2) not null,
  amount numeric(12,2) not null,
  primary key (did, line)
);

-- Old vehicles taken in exchange against a new vehicle's invoice, at the agreed value, with
-- the papers received; the receipt the dealer gives the customer prints one row.
create table oldveh (
  xid integer primary key,
  xno varchar(20) not null,
  xdate date not null,
  br_id integer references branch (br_id),
  cust_id integer not null references customer (cust_id),
  invid integer references invoice (id),
  make_model varchar(40) not null,
  mfg_year integer,
  regno varchar(16) not null,
  chassis varchar(20),
  engine varchar(20),
  colour varchar(20),
  kms integer,
  owners integer,
  insurer varchar(40),
  value numeric(12,2) not null,
  rc_recd varchar(1),
  ins_recd varchar(1),
  noc_recd varchar(1),
  keys_recd varchar(1),
  paymode varchar(8),
  xuser varchar(20)
);

-- Ledger lines: one row per voucher line with its voucher and the account shown against it
-- (the party ledger's host SQL and the reference ledger read it).
create view vu_ledger as
select d.am_id, a.am_name, a.am_group, m.vm_id, m.vm_type, m.vm_no, m.vm_date, m.br_id,
  m.vm_ref, m.vm_refdate, m.vm_mode, m.vm_chqno, m.vm_narration, m.vm_user, d.vd_line,
  d.vd_dr, d.vd_cr, d.vd_against, o.am_name as against_name, d.vd_remarks
from vchdet d
join vchmst m on m.vm_id = d.vm_id
join fa_acmaster a on a.am_id = d.am_id
left join fa_acmaster o on o.am_id = d.vd_against;

-- Vouchers with their lines in order, the account and its group (the single voucher and the
-- user-wise list read it).
create view vu_voucher as
select m.vm_id, m.vm_type, m.vm_no, m.vm_date, m.br_id, b.br_name, b.coid, m.vm_ref,
  m.vm_refdate, m.vm_amt, m.vm_mode, m.vm_chqno, m.vm_chqdate, m.vm_bank, m.vm_narration,
  m.vm_user, m.vm_checkedby, d.vd_line, d.am_id, a.am_name, a.am_group, d.vd_dr, d.vd_cr,
  d.vd_remarks
from vchmst m
join vchdet d on d.vm_id = m.vm_id
join fa_acmaster a on a.am_id = d.am_id
left join branch b on b.br_id = m.br_id;

-- GST vouchers with their lines, the party and the expense account.
create view vu_gstvoucher as
select g.did, g.dtype, g.dnum, g.ddate, g.br_id, b.coid, g.am_id, p.am_name, p.am_add1,
  p.am_town, p.am_state, p.am_statecode, p.am_pin, p.am_gst, p.am_pan, g.bill_no, g.bill_date,
  g.taxable as tot_taxable, g.cgst as tot_cgst, g.sgst as tot_sgst, g.igst as tot_igst, g.damt,
  g.narration, g.vm_id, m.vm_no, g.duser, l.line, l.am_id as exp_id, e.am_name as exp_name,
  l.descr, l.sac, l.taxable, l.gst_rate, l.cgst, l.sgst, l.igst, l.amount
from gstvmst g
join gstvdet l on l.did = g.did
join fa_acmaster p on p.am_id = g.am_id
join fa_acmaster e on e.am_id = l.am_id
left join vchmst m on m.vm_id = g.vm_id
left join branch b on b.br_id = g.br_id;

-- GST debit and credit notes with their lines and the party.
create view vu_gstdcn as
select n.did, n.dtype, n.dnum, n.ddate, n.br_id, b.coid, n.am_id, p.am_name, p.am_add1,
  p.am_add2, p.am_town, p.am_state, p.am_statecode, p.am_pin, p.am_gst, n.orig_no, n.orig_date,
  n.reason, n.taxable as tot_taxable, n.cgst as tot_cgst, n.sgst as tot_sgst,
  n.igst as tot_igst, n.damt, n.vm_id, m.vm_no, n.duser, l.line, l.descr, l.hsn, l.qty, l.rate,
  l.taxable, l.gst_rate, l.cgst, l.sgst, l.igst, l.amount
from gstdcnmst n
join gstdcndet l on l.did = n.did
join fa_acmaster p on p.am_id = n.am_id
left join vchmst m on m.vm_id = n.vm_id
left join branch b on b.br_id = n.br_id;

-- Exchange vehicles with the customer and the new vehicle's invoice.
create view vu_oldveh as
select x.xid, x.xno, x.xdate, x.br_id, b.br_name, b.coid, x.cust_id, c.cname, c.relation,
  c.cfname, c.cadd1, c.cadd2, c.ccity, c.cpin, c.cmobile, x.invid, i.num as inv_num,
  i.idate as inv_date, x.make_model, x.mfg_year, x.regno, x.chassis, x.engine, x.colour, x.kms,
  x.owners, x.insurer, x.value, x.rc_recd, x.ins_recd, x.noc_recd, x.keys_recd, x.paymode,
  x.xuser
from oldveh x
join customer c on c.cust_id = x.cust_id
left join invoice i on i.id = x.invid
left join branch b on b.br_id = x.br_id;


-- ===== Accounts: the VAT year, C forms, quotations, the top list, labels =====

-- The VAT year: state VAT ended on 30 June 2017, so the returns print April 2016 to June 2017.
-- The firm's registration under the state VAT and the central sales tax, which its VAT returns
-- print (coid as in firm).
create table vat_dealer (
  coid integer primary key,
  mvat_tin varchar(12) not null,
  cst_tin varchar(12) not null,
  registered_on date not null,
  periodicity varchar(10) not null,
  vat_office varchar(60) not null,
  signatory varchar(60) not null,
  designation varchar(30) not null
);

-- Sales bills of that year, one row per bill line: vehicles and spare parts at 13.5 %, helmets
-- and accessories at 12.5 %, cycles at 5 %, and inter-state sales to the Belagavi sub-dealer at
-- the CST rate of 2 % against Form C (sale_type I). vat_amt is vat_rate on taxable to the paisa
-- (half up) and total = taxable + vat_amt. ret_mm and ret_yy name the monthly return the bill
-- falls in; party_tin is the buyer's TIN (MVAT TINs end in V), null for a retail buyer.
create table vat_sale (
  vs_id integer primary key,
  bill_no varchar(20) not null,
  bill_date date not null,
  ret_mm integer not null,
  ret_yy integer not null,
  sale_type varchar(1) not null,
  party_name varchar(80) not null,
  party_tin varchar(12),
  party_state varchar(40),
  item_kind varchar(1) not null,
  description varchar(80) not null,
  qty integer not null,
  vat_rate numeric(5,2) not null,
  taxable numeric(12,2) not null,
  vat_amt numeric(12,2) not null,
  total numeric(12,2) not null
);
create index ix_vat_sale_date on vat_sale (bill_date);

-- Purchase bills of the VAT year, one row per bill line: local purchases with VAT (purchase_type
-- L, set-off claimed) and inter-state purchases from the manufacturers at 2 % CST against Form C
-- (purchase_type I, cf_id the C form that covers it). tax_amt is tax_rate on taxable to the
-- paisa and total = taxable + tax_amt.
create table vat_purchase (
  vp_id integer primary key,
  bill_no varchar(30) not null,
  bill_date date not null,
  ret_mm integer not null,
  ret_yy integer not null,
  purchase_type varchar(1) not null,
  am_id integer not null,
  supplier_name varchar(80) not null,
  supplier_tin varchar(15),
  supplier_state varchar(40),
  item_kind varchar(1) not null,
  description varchar(80) not null,
  qty integer not null,
  tax_rate numeric(5,2) not null,
  taxable numeric(12,2) not null,
  tax_amt numeric(12,2) not null,
  total numeric(12,2) not null,
  cf_id integer
);
create index ix_vat_purchase_date on vat_purchase (bill_date);

-- The C forms the dealer issued to its inter-state suppliers, one per supplier and quarter;
-- amount is the sum of the totals of the purchases it covers (vat_purchase.cf_id), bills their
-- number.
create table vat_cform (
  cf_id integer primary key,
  cform_series varchar(4) not null,
  cform_no varchar(16) not null,
  issue_date date not null,
  am_id integer not null,
  supplier_name varchar(80) not null,
  supplier_tin varchar(15),
  supplier_state varchar(40) not null,
  period_from date not null,
  period_to date not null,
  bills integer not null,
  amount numeric(12,2) not null
);

-- Tax paid into the government treasury by challan (MTR-6) for each monthly return: qno the
-- quarter of the financial year (1 April-June … 4 January-March), mm and yy the month of the
-- return; total = vat_amt + cst_amt + interest.
create table vat_payment (
  pay_id integer primary key,
  qno integer not null,
  mm integer not null,
  yy integer not null,
  challan_no varchar(20) not null,
  pay_date date not null,
  bank varchar(60) not null,
  vat_amt numeric(12,2) not null,
  cst_amt numeric(12,2) not null,
  interest numeric(12,2) not null,
  total numeric(12,2) not null
);

-- The return's computation: sales and purchases of each month by side (S sales, P purchases),
-- kind of trade (L local, I inter-state) and rate.
create view vu_vat_wsheet as
select ret_yy as yy, ret_mm as mm, 'S' as side, sale_type as trade, vat_rate as rate,
  count(*) as bills, sum(taxable) as taxable, sum(vat_amt) as tax, sum(total) as total
from vat_sale group by ret_yy, ret_mm, sale_type, vat_rate
union all
select ret_yy, ret_mm, 'P', purchase_type, tax_rate, count(*), sum(taxable), sum(tax_amt),
  sum(total)
from vat_purchase group by ret_yy, ret_mm, purchase_type, tax_rate;

-- HSN codes with the description and unit quantity code the GST returns print.
create table gst_hsn (
  hsn varchar(8) primary key,
  description varchar(80) not null,
  uqc varchar(3) not null
);

-- Every outward supply line: the vehicle invoices, and the workshop's job, counter and claim
-- invoices (vu_ws_gstsalelines, whose columns these are).
create view vu_gst_outward as
select i.idate as doc_date, i.num as doc_no, coalesce(i.cust_id, i.am_id) as party_id,
  coalesce(c.cname, a.am_name) as party_name, coalesce(c.cgstin, a.am_gst) as party_gstin,
  i.pos_code as pos_state_code, p.hsn, p.description, p.uom as uqc, p.qty,
  cast(coalesce(p.cgst_rate, 0) + coalesce(p.sgst_rate, 0) + coalesce(p.igst_rate, 0) as integer)
    as gst_rate,
  p.taxable, coalesce(p.cgst_amt, 0) as cgst, coalesce(p.sgst_amt, 0) as sgst,
  coalesce(p.igst_amt, 0) as igst, 0.00 as cess
from invoice i
join purdata p on p.invid = i.id
left join customer c on c.cust_id = i.cust_id
left join fa_acmaster a on a.am_id = i.am_id
union all
select doc_date, doc_no, party_id, party_name, party_gstin, pos_state_code, hsn, description, uqc,
  qty, gst_rate, taxable, cgst, sgst, igst, cess
from vu_ws_gstsalelines;

-- Every inward supply line: the vehicle purchase bills, and the workshop's spares purchases
-- with their returns negative (vu_ws_gstpurchaselines, whose columns these are).
create view vu_gst_inward as
select u.billdate as doc_date, u.billno as doc_no, u.supid as party_id, a.am_name as party_name,
  a.am_gst as party_gstin, '27' as pos_state_code, l.hsn,
  case when m.variant is null then m.model else m.model || ' ' || m.variant end as description,
  l.uom as uqc, l.qty,
  cast(coalesce(l.cgst_rate, 0) + coalesce(l.sgst_rate, 0) + coalesce(l.igst_rate, 0) as integer)
    as gst_rate,
  l.taxable, coalesce(l.cgst_amt, 0) as cgst, coalesce(l.sgst_amt, 0) as sgst,
  coalesce(l.igst_amt, 0) as igst, 0.00 as cess
from purchase u
join purveh l on l.purid = u.id
join fa_acmaster a on a.am_id = u.supid
join vehicle v on v.veh_id = l.veh_id
join vehmodel m on m.model_id = v.model_id
union all
select doc_date, doc_no, party_id, party_name, party_gstin, pos_state_code, hsn, description, uqc,
  qty, gst_rate, taxable, cgst, sgst, igst, cess
from vu_ws_gstpurchaselines;

-- Vehicle quotations given to walk-in customers: the on-road price of one model, colour and
-- branch. exsh_price is the ex-showroom price with GST (taxable + gst_amt); onroad = exsh_price
-- + reg_charges + hsrp + insurance + accessories + ext_warranty - discount.
create table quotation (
  id integer primary key,
  qno varchar(20) not null,
  qdate date not null,
  valid_upto date not null,
  br_id integer not null,
  ctitle varchar(6),
  cname varchar(80) not null,
  cadd1 varchar(80),
  ccity varchar(40),
  cpin varchar(6),
  cmobile varchar(10),
  cemail varchar(80),
  model_id integer not null,
  color_name varchar(30),
  exsh_price numeric(12,2) not null,
  taxable numeric(12,2) not null,
  gst_rate numeric(5,2) not null,
  gst_amt numeric(12,2) not null,
  reg_charges numeric(12,2) not null,
  hsrp numeric(12,2) not null,
  insurance numeric(12,2) not null,
  accessories numeric(12,2) not null,
  acc_list varchar(120),
  ext_warranty numeric(12,2) not null,
  discount numeric(12,2) not null,
  onroad numeric(12,2) not null,
  executive varchar(40),
  finance_note varchar(120)
);

-- A quotation with its model and the issuing branch (the template selects by id).
create view vu_quotation as
select q.*, m.make, m.model, m.variant, m.model_code, m.hsn, m.fuel, m.cc, m.battery_kwh,
  b.coid, b.br_name, b.br_rto
from quotation q
join vehmodel m on m.model_id = q.model_id
join branch b on b.br_id = q.br_id;

-- The workshop's top lists: a saved selection (what is ranked, over which period and branch)
-- and its ranked lines as the workshop's Top List screen worked them out. basis P ranks spare
-- parts by sale value, M mechanics by labour billed, S service types by job count.
create table ws_toplist (
  td_id integer primary key,
  title varchar(80) not null,
  basis varchar(1) not null,
  from_date date not null,
  to_date date not null,
  br_id integer not null,
  top_n integer not null,
  prepared_by varchar(40),
  prepared_on date not null
);

-- One ranked line of a top list: code and name of the part, mechanic or service type; docs
-- the number of invoices or job cards, qty the quantity (parts) or hours (labour), amount the
-- value before tax; share the line's percentage of the selection's whole amount (two decimals).
create table ws_toplistdet (
  td_id integer not null references ws_toplist (td_id),
  rank_no integer not null,
  code varchar(20) not null,
  name varchar(80) not null,
  category varchar(30),
  docs integer not null,
  qty numeric(10,2) not null,
  amount numeric(12,2) not null,
  share numeric(5,2) not null,
  primary key (td_id, rank_no)
);

-- A top list with its lines and the branch that printed it.
create view vu_ws_toplist as
select t.td_id, t.title, t.basis, t.from_date, t.to_date, t.br_id, t.top_n, t.prepared_by,
  t.prepared_on, d.rank_no, d.code, d.name, d.category, d.docs, d.qty, d.amount, d.share,
  b.br_name, b.coid
from ws_toplist t
join ws_toplistdet d on d.td_id = t.td_id
join branch b on b.br_id = t.br_id;

